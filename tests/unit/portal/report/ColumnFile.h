// ColumnFile.h: a run-time root in the temporary folder, to hold the column files of a test.
#pragma once

#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

// Makes the root at first use, for the whole process.
inline const std::string& TestRoot() {
    static const struct Root {
        Root() {
            char folder[] = "/tmp/lumora_columns_XXXXXX";
            path = mkdtemp(folder);
            std::filesystem::create_directories(path + "/Norvane/config/reports");
        }
        ~Root() { std::filesystem::remove_all(path); }
        std::string path;
    } root;
    setenv("LUMORA_ROOT", root.path.c_str(), 1);
    return root.path;
}

// Writes a file below Norvane/config/reports.
inline void WriteColumnFile(const char* name, const std::string& content) {
    const std::string path = TestRoot() + "/Norvane/config/reports/" + name;
    FILE* file = fopen(path.c_str(), "w");
    fwrite(content.data(), 1, content.size(), file);
    fclose(file);
}
