// DescriptionWriter.h: writes a JSON text of any length into one buffer.
#pragma once

#include <string>
#include <string_view>

// Values and members come in their order; the caller balances Begin and End. The layout is that of
// the portal's other JSON answers (cgiFramework/JSONPage.h), without a node for each value.
class DescriptionWriter {
  public:
    void BeginObject() { Begin('{'); }
    void EndObject() { End("\n}"); }
    void BeginArray() { Begin('['); }
    void EndArray() { End("\n]"); }
    // Begins a member; its value follows. The name is written as it stands.
    void Name(std::string_view name);
    // Control characters become blanks: readers of the text take no raw ones.
    void String(std::string_view text);
    void Number(long number) { Raw(std::to_string(number)); }
    // A number, or one of the words true, false and null.
    void Raw(std::string_view word);

    void StringMember(std::string_view name, std::string_view text);
    void NumberMember(std::string_view name, long number);

    std::string& text() { return text_; }

  private:
    void Begin(char bracket);
    void End(std::string_view bracket);
    void Separate();

    std::string text_;
    bool needsComma_ = false;
};
