#include "tools/directoryd/Search.h"

#include <algorithm>

namespace directoryd {

namespace {

std::string TextOf(const ASN1String& element) {
    return {element.str.get(), element.length};
}

ASN1String* NewString(const std::string& text) {
    return new ASN1String(reinterpret_cast<const unsigned char*>(text.data()), text.size());
}

void AddAttribute(ASN1Sequence& list, const std::string& name, const std::string& value,
                  bool typesOnly) {
    ASN1Sequence& attribute = list.Adopt(new ASN1Sequence());
    attribute.Add2Seq(NewString(name));
    ASN1Set& values = attribute.Adopt(new ASN1Set());
    if (!typesOnly) values.Add2Seq(NewString(value));
}

}  // namespace

bool SearchRequest::Decode(BerCursor in) {
    base = TextOf(ASN1String(in));
    scope = ASN1Integer(in).val;
    const ASN1Integer aliases(in);
    sizeLimit = ASN1Integer(in).val;
    const ASN1Integer timeLimit(in);
    typesOnly = ASN1Integer(in).val != 0;
    filter = Filter::Decode(in);
    BerHeader header;
    BerCursor names = in.TakeElement(header);
    while (names.ok() && !names.empty()) {
        const ASN1String name(names);
        if (names.ok()) attributes.push_back(TextOf(name));
    }
    if (std::count(attributes.begin(), attributes.end(), "*") > 0) attributes.clear();
    return in.ok() && names.ok() && filter != nullptr && scope >= 0 && scope <= 2 && sizeLimit >= 0;
}

std::unique_ptr<ASN1Sequence> SearchRequest::Select(const Entry& entry) const {
    auto list = std::make_unique<ASN1Sequence>();
    if (attributes.empty())
        for (const Attribute& a : entry.attributes)
            AddAttribute(*list, a.name, a.value, typesOnly);
    for (const std::string& name : attributes)
        if (const Attribute* const a = entry.Find(name))
            AddAttribute(*list, name, a->value, typesOnly);
    if (list->seq_list.empty()) AddAttribute(*list, "GUID", entry.Find("GUID")->value, typesOnly);
    return list;
}

}  // namespace directoryd
