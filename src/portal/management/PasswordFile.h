// PasswordFile.h: hashed passwords, and the web server's file of them.
#pragma once

#include <string>

// The bcrypt hash of the password with a salt of its own, in the form that the web server reads.
// Throws a text when the machine cannot make one.
std::string HashPassword(const std::string& password);

// Does the password belong to the hash? Never for an empty hash.
[[nodiscard]] bool IsPassword(const std::string& password, const std::string& hash);

// The file's text with the user's hash in place of the former one, or as a new line. Other lines
// stay as they are.
std::string WithPassword(const std::string& text, const std::string& user, const std::string& hash);

// Replaces the file at once by one with the user's new hash, of the same owner and mode. Readers
// see either the old file or the new one. Throws a text that says what failed; then nothing is
// changed. The caller keeps other writers out.
void RewritePasswordFile(const char* path, const std::string& user, const std::string& hash);
