#include "portal/chart/DescriptionWriter.h"

#include "cgiFramework/JSONText.h"

void DescriptionWriter::Name(std::string_view name) {
    Separate();
    text_.append("\"").append(name).append("\" : ");
    needsComma_ = false;
}

void DescriptionWriter::String(std::string_view text) {
    Separate();
    text_ += '"';
    for (const char c : text)
        AppendJSONEscaped(text_, static_cast<unsigned char>(c) < ' ' ? ' ' : c);
    text_ += '"';
    needsComma_ = true;
}

void DescriptionWriter::Raw(std::string_view word) {
    Separate();
    text_ += word;
    needsComma_ = true;
}

void DescriptionWriter::StringMember(std::string_view name, std::string_view text) {
    Name(name);
    String(text);
}

void DescriptionWriter::NumberMember(std::string_view name, long number) {
    Name(name);
    Number(number);
}

void DescriptionWriter::Begin(char bracket) {
    Separate();
    text_ += bracket;
    needsComma_ = false;
}

void DescriptionWriter::End(std::string_view bracket) {
    text_ += bracket;
    needsComma_ = true;
}

void DescriptionWriter::Separate() {
    if (needsComma_) text_ += ',';
}
