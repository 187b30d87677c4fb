// ReportPrintPage.h: a report's result as sheets of paper show it: without menus and links.
#pragma once

#include "portal/theme/StandardPage.h"

class LumoraReport;

class ReportPrintPage : public ThemePage {
  public:
    // Takes the report over. Sheets lie across, and letters get smaller, where its columns need
    // the room.
    ReportPrintPage(WebContext& ctx, LumoraReport* report);

  protected:
    void RenderFrameTop(WebContext& ctx, WebRender* out) override;
    void RenderFrameBottom(WebContext& ctx, WebRender* out) override;
};
