// WebSession.h: what outlives a request: session variables and their locked files.
#pragma once

#include <cstdio>
#include <cstdlib>

#include "common/UStringX.h"
#include "kernel/OSList.h"

// One variable of a web session.
class WebSessionVar : public OSListObj {
  public:
    UString name;
    UString value;
    UString def_;

    bool IsKey(const char* key) override { return name == key; }
    // The value, or the default when the value is empty.
    const char* Text() const;
    operator const char*() const { return Text(); }
    int Int() const { return atoi(Text()); }
    explicit operator int() const { return Int(); }
    void SetDef(const char* text) { def_ = text; }
    WebSessionVar& operator=(const char* text) {
        value = text;
        return *this;
    }
    bool IsEmpty() const { return *value.c_str() == '\0'; }
    bool operator==(const char* text) const { return value == text; }
    bool operator!=(const char* text) const { return value != text; }
};

// A file opened under an exclusive lock, for reading too. The file is never created. A file that
// cannot be opened leaves the stream null; a lock that is not had within 10 seconds, or a failing
// system call, throws a text. The destructor closes the file, which releases the lock.
class LockedFile {
  public:
    LockedFile(const char* path, const char* mode);
    ~LockedFile();
    LockedFile(const LockedFile&) = delete;
    LockedFile& operator=(const LockedFile&) = delete;
    operator FILE*() const { return stream_; }

  private:
    void Lock();
    [[noreturn]] void Fail(const char* text);

    FILE* stream_ = nullptr;
    int fd_ = -1;
};

// Deletes the files of `dir` whose names hold `needle` and that nobody wrote for `maxAge` seconds.
// Folders and names that begin with "+" stay.
void CleanupDir(const char* dir, const char* needle, int maxAge);

// Makes a scratch folder (mode 0700) when it is missing. Throws a text that names the folder when
// it cannot be made or written. `path` is below "/Norvane".
void EnsureFolder(const char* path);

// Does the text have the form of a session id: 1 to 20 decimal digits?
bool IsSessionId(const char* text);
