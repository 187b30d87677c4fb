#include "tools/directoryd/Ldif.h"

#include <fcntl.h>
#include <openssl/evp.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <vector>

namespace directoryd {

namespace {

struct CloseFile {
    void operator()(FILE* file) const { std::fclose(file); }
};

[[noreturn]] void Fail(const std::string& path) {
    throw std::runtime_error(path + ": " + std::strerror(errno));
}

[[noreturn]] void FailAt(const std::string& path, size_t line, const std::string& what) {
    throw std::runtime_error(path + ", line " + std::to_string(line) + ": " + what);
}

std::string FromBase64(const std::string& text) {
    std::string bytes(text.size() / 4 * 3 + 3, '\0');
    const int size = EVP_DecodeBlock(reinterpret_cast<unsigned char*>(bytes.data()),
                                     reinterpret_cast<const unsigned char*>(text.data()),
                                     static_cast<int>(text.size()));
    if (size < 0) throw std::invalid_argument("not base64");
    // The decoder counts the bytes that the padding stands for.
    const auto padding = static_cast<size_t>(std::count(text.begin(), text.end(), '='));
    bytes.resize(static_cast<size_t>(size) - std::min(padding, static_cast<size_t>(size)));
    return bytes;
}

std::string ToBase64(const std::string& bytes) {
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
    const int size = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                                     reinterpret_cast<const unsigned char*>(bytes.data()),
                                     static_cast<int>(bytes.size()));
    text.resize(static_cast<size_t>(size));
    return text;
}

// Whether a value may stand as it is (RFC 2849, SAFE-STRING).
bool IsSafe(const std::string& value) {
    if (value.empty()) return true;
    if (std::strchr(" :<", value.front()) != nullptr || value.back() == ' ') return false;
    return std::all_of(value.begin(), value.end(), [](char c) { return c >= ' ' && c < 0x7F; });
}

std::string Line(const std::string& name, const std::string& value) {
    return IsSafe(value) ? name + ": " + value + "\n" : name + ":: " + ToBase64(value) + "\n";
}

// One "name: value" of a file, its folded lines joined.
Attribute ParseLine(const std::string& line) {
    const size_t colon = line.find(':');
    if (colon == std::string::npos) throw std::invalid_argument("no \":\"");
    const bool coded = line.compare(colon, 2, "::") == 0;
    if (line.compare(colon, 2, ":<") == 0) throw std::invalid_argument("addresses are not read");
    const size_t value = line.find_first_not_of(' ', colon + (coded ? 2 : 1));
    const std::string text = value == std::string::npos ? "" : line.substr(value);
    return {line.substr(0, colon), coded ? FromBase64(text) : text};
}

// Collects the lines of an entry and adds it at its end.
class Reader {
  public:
    Reader(const std::string& path, Directory& directory) : path_(path), directory_(directory) {}

    void Take(const std::string& line, size_t number) {
        try {
            Attribute a = ParseLine(line);
            if (a.name == "version" && !started_) return;
            if (!started_ && !SameText(a.name, "dn"))
                throw std::invalid_argument("an entry begins with \"dn:\"");
            if (!started_) {
                started_ = true;
                first_ = number;
                dn_ = a.value;
                return;
            }
            attributes_.push_back(std::move(a));
        } catch (const std::invalid_argument& error) {
            FailAt(path_, number, error.what());
        }
    }

    void EndEntry() {
        if (!started_) return;
        started_ = false;
        const Result result = directory_.Add(dn_, std::move(attributes_), /*given=*/true);
        attributes_.clear();
        if (result != Result::kSuccess)
            FailAt(path_, first_,
                   dn_ + " cannot be added: result " + std::to_string(static_cast<int>(result)));
    }

  private:
    const std::string& path_;
    Directory& directory_;
    bool started_ = false;
    size_t first_ = 0;
    std::string dn_;
    std::vector<Attribute> attributes_;
};

}  // namespace

void ReadLdif(const std::string& path, Directory& directory) {
    std::ifstream file(path, std::ios::binary);
    if (!file) Fail(path);
    Reader reader(path, directory);
    std::string logical;  // the lines so far of one that may go on
    size_t number = 0;
    size_t first = 0;
    const auto finish = [&] {
        if (!logical.empty() && logical[0] != '#') reader.Take(logical, first);
        logical.clear();
    };
    for (std::string line; std::getline(file, line);) {
        ++number;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (!line.empty() && line[0] == ' ') {
            logical += line.substr(1);
            continue;
        }
        finish();
        if (line.empty()) reader.EndEntry();
        logical = line;
        first = number;
    }
    if (file.bad()) Fail(path);
    finish();
    reader.EndEntry();
}

void WriteLdif(const std::string& path, const Directory& directory) {
    std::string text = "version: 1\n";
    directory.Visit(*directory.Find(""), 2, [&text](const Entry& entry) {
        text += "\n" + Line("dn", entry.DN());
        for (const Attribute& a : entry.attributes)
            text += Line(a.name, a.value);
        return true;
    });

    const std::string temporary = path + ".new";
    const int fd =
        open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0640);
    if (fd < 0) Fail(temporary);
    std::unique_ptr<FILE, CloseFile> file(fdopen(fd, "w"));
    const bool written = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size() &&
                         std::fflush(file.get()) == 0 && fsync(fd) == 0;
    if (!written || std::rename(temporary.c_str(), path.c_str()) != 0) {
        const int error = errno;
        unlink(temporary.c_str());
        errno = error;
        Fail(temporary);
    }
}

}  // namespace directoryd
