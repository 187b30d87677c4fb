// JSONText.h: the texts of JSON documents: how a byte is escaped, and how a document is read.
#pragma once

#include <memory>
#include <string>

class JSONItem;
class JSONObject;
class WebItem;

// Appends the byte as it stands in a string. A carriage return stays raw.
void AppendJSONEscaped(std::string& out, char c);

// Throws the text for the first of these that does not match: braces, brackets, double quotes that
// follow no backslash. Only counts, so "}{" passes.
void CheckJSONBalance(const char* text);

// Reads a document into items. Throws the texts of CheckJSONBalance.
class JSONTextReader {
  public:
    // Borrows the text.
    explicit JSONTextReader(const char* text) : p_(text) {}
    // Reads a text that is one object, and nothing behind it.
    void Document(JSONObject& top);

  private:
    void Members(JSONItem& object);
    void Elements(JSONItem& array);
    // `complaint` is what the place that holds the value throws when it is none.
    std::unique_ptr<WebItem> Value(const char* complaint);
    std::unique_ptr<WebItem> Nested(std::unique_ptr<JSONItem> item,
                                    void (JSONTextReader::*content)(JSONItem&));
    // The text between the quotes, escapes as they stand, raw control bytes escaped.
    std::string String();
    std::string Escape();
    // A number or word; empty when none stands here.
    std::string Bare();
    std::string Number();
    std::string Digits();
    bool Accept(char c);
    void Expect(char c, const char* complaint);

    const char* p_;
    int depth_ = 0;
};
