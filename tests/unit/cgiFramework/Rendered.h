// Rendered.h: an item's output in a request of its own.
#pragma once

#include <string>

#include "cgiFramework/WebPage.h"
#include "unit/cgiFramework/TestRequest.h"

inline std::string Rendered(WebItem& item) {
    TestRequest request;
    WebContext ctx(nullptr, nullptr);
    UStringWebRender out;
    item.Render(ctx, &out);
    return out.output.c_str();
}
