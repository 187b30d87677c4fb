#include "portal/report/LumoraReportGraph.h"

#include <openssl/evp.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "cgiFramework/JsonObj.h"
#include "cgiFramework/WebSession.h"
#include "common/Html.h"
#include "common/Log.h"
#include "common/Path.h"
#include "common/ThrowText.h"
#include "portal/chart/PngChart.h"
#include "portal/report/ReportMessage.h"

namespace {

constexpr char kFolder[] = "/Norvane/sessions/charts";

// A file of this process alone, for a picture on its way to the page.
class PictureFile {
  public:
    PictureFile() {
        EnsureFolder(kFolder);
        path_ = std::string(RootPath(kFolder).c_str()) + "/picture_XXXXXX.png";
        const int fd = mkstemps(path_.data(), static_cast<int>(strlen(".png")));
        if (fd < 0) ThrowText("could not open %s", path_.c_str());
        close(fd);
    }
    ~PictureFile() { unlink(path_.c_str()); }
    PictureFile(const PictureFile&) = delete;
    PictureFile& operator=(const PictureFile&) = delete;

    const char* path() const { return path_.c_str(); }
    std::string Read() const {
        struct CloseFile {
            void operator()(FILE* file) const { fclose(file); }
        };
        const std::unique_ptr<FILE, CloseFile> file(fopen(path(), "rbe"));
        if (file == nullptr) ThrowText("could not open %s", path());
        std::string bytes;
        char block[8192];
        while (const size_t got = fread(block, 1, sizeof block, file.get()))
            bytes.append(block, got);
        return bytes;
    }

  private:
    std::string path_;
};

std::string Base64(const std::string& bytes) {
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
    // OpenSSL's are plain bytes.
    const int length = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                                       reinterpret_cast<const unsigned char*>(bytes.data()),
                                       static_cast<int>(bytes.size()));
    text.resize(static_cast<size_t>(length));
    return text;
}

}  // namespace

ReportChart::ReportChart(std::unique_ptr<OpenFlashGraph> chart, std::string note)
    : chart_(std::move(chart)), note_(std::move(note)) {}

void ReportChart::Render(WebContext& ctx, WebRender* out) {
    // The address of the data is known once its file is written.
    UStringWebRender target;
    chart_->Render(ctx, &target);
    const UString url = chart_->GetDataURL(ctx);
    out->printf("<figure class=\"reportChart\" data-chart=\"%s\">\n",
                HtmlAttr(url.c_str()).c_str());
    out->Write(target.output.c_str());
    out->Write(
        "\n<noscript><p class=\"hint\">The chart is drawn by JavaScript, which is switched off."
        "</p></noscript>\n");
    WriteNote(*out);
    out->Write("</figure>\n");
    out->Write(OpenFlashGraph::GetHeaders(ctx));
}

void ReportChart::WriteNote(WebRender& out) const {
    if (!note_.empty())
        out.printf("<figcaption class=\"hint\">%s</figcaption>\n", HtmlText(note_.c_str()).c_str());
}

// The PNG file of the chart `json`, and the map of its links.
std::string ReportChart::DrawPicture(JsonObj& json, UString& mapName, UString& map) {
    const PictureFile file;
    const PngChart picture(&json, chart_->width(), chart_->height(), file.path(), "");
    picture.GetMap(mapName, map);
    return file.Read();
}

void ReportChart::RenderImage(WebContext& ctx, WebRender* out) {
    std::string description = chart_->Describe(ctx);
    std::string picture;
    UString mapName;
    UString map;
    try {
        JsonObj json(description.data(), nullptr, 0);
        picture = DrawPicture(json, mapName, map);
    } catch (const char* message) {
        LogError("Chart elements parse error:%s", message);
        ReportNotice("The graph of this report could not be drawn.").Render(ctx, out);
        return;
    }
    const UString title = HtmlAttr(chart_->GetTitle());
    std::string html = "<figure class=\"reportChart\"><img alt=\"Graph: ";
    html.append(title.c_str()).append(". The table has its figures.\" usemap=\"#");
    html.append(HtmlAttr(mapName.c_str()).c_str()).append("\" src=\"data:image/png;base64,");
    html.append(Base64(picture)).append("\">\n").append(map.c_str());
    out->Write(html);
    WriteNote(*out);
    out->Write("</figure>\n");
}
