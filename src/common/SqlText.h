// SqlText.h: the only way to write a statement. The compiler checks each format against its
// arguments, so text that is neither escaped nor our own cannot reach the server.
//
//   SqlText(kQueuesSql, SqlQuoted(name), 5)
//
// In a format, %s takes a SqlQuoted (between quotes of the format) or a SqlFragment, %d and %i an
// int, %ld a long, %lld a long long, and %% stands for one per cent sign: also where there are no
// arguments. Anything else does not compile.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "common/SqlFormat.h"

class UString;

// A value from outside, escaped to stand between quotes. Null reads as "".
class SqlQuoted {
  public:
    explicit SqlQuoted(const char* text);
    explicit SqlQuoted(const UString& text);
    std::string_view text() const { return escaped_; }

  private:
    std::string escaped_;
};

// SQL of our own or a value that was checked, pasted as it stands: say why where it is made.
class SqlFragment {
  public:
    explicit SqlFragment(const char* text) : text_(text != nullptr ? text : "") {}
    explicit SqlFragment(std::string text) : text_(std::move(text)) {}
    std::string_view text() const { return text_; }

  private:
    std::string text_;
};

class SqlText {
  public:
    template <class... Args>
    explicit SqlText(SqlFormat<std::type_identity_t<Args>...> format, const Args&... args) {
        const std::array<std::string, sizeof...(Args)> values = {Value(args)...};
        Fill(format.text(), values.data());
    }

    // A report's template after its placeholders were filled. The caller answers for every value in
    // it: nothing is checked or escaped here.
    static SqlText FromTemplate(std::string finished);

    const char* c_str() const { return text_.c_str(); }
    size_t length() const { return text_.size(); }

  private:
    SqlText() = default;
    static std::string Value(const SqlQuoted& value) { return std::string(value.text()); }
    static std::string Value(const SqlFragment& value) { return std::string(value.text()); }
    template <class Integer>
    static std::string Value(Integer value) {
        return std::to_string(value);
    }
    void Fill(std::string_view format, const std::string* values);

    std::string text_;
};
