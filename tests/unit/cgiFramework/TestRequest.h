// TestRequest.h: a CGI environment and a run-time root for one test case.
#pragma once

#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

// Sets environment variables and takes them back; makes an empty root below the temporary folder.
class TestRequest {
  public:
    TestRequest() {
        char folder[] = "/tmp/lumora-test-XXXXXX";
        root = mkdtemp(folder);
        std::filesystem::create_directories(root / "Norvane/config");
        Set("LUMORA_ROOT", root.string());
        Set("REMOTE_ADDR", "192.0.2.1");
        Set("REMOTE_PORT", "4711");
        Set("SCRIPT_NAME", "/lumora/lumora.cgi");
    }
    ~TestRequest() {
        for (const std::string& name : names_)
            unsetenv(name.c_str());
        std::filesystem::remove_all(root);
    }
    TestRequest(const TestRequest&) = delete;
    TestRequest& operator=(const TestRequest&) = delete;

    void Set(const char* name, const std::string& value) {
        setenv(name, value.c_str(), 1);
        names_.push_back(name);
    }
    void Write(const std::string& path, const std::string& text) const {
        std::ofstream(root / path, std::ios::binary) << text;
    }
    std::string Read(const std::string& path) const {
        std::ostringstream text;
        text << std::ifstream(root / path, std::ios::binary).rdbuf();
        return text.str();
    }
    // The names in the session folder, in order.
    std::vector<std::string> SessionFiles() const {
        std::vector<std::string> files;
        const auto sessions = root / "Norvane/sessions";
        if (!std::filesystem::exists(sessions)) return files;
        for (const auto& entry : std::filesystem::directory_iterator(sessions))
            files.push_back(entry.path().filename().string());
        std::sort(files.begin(), files.end());
        return files;
    }

    std::filesystem::path root;

  private:
    std::vector<std::string> names_;
};
