// ReportSpool.h: keeps what is rendered until somebody reads it.
#pragma once

#include <string>

#include "cgiFramework/WebRender.h"

// The first part stays in memory; what goes beyond it lies in a file without a name, which ends
// with the process. A failure to write throws a text.
class ReportSpool : public WebRender {
  public:
    ReportSpool() = default;
    ~ReportSpool() override;
    ReportSpool(const ReportSpool&) = delete;
    ReportSpool& operator=(const ReportSpool&) = delete;

    void vprintf(const char* fmt, va_list args) override __attribute__((format(printf, 2, 0)));
    void Write(std::string_view text) override;
    static constexpr char kFolder[] = "/Norvane/fifos";

    // The path of this spool's file, for somebody who writes a whole file by its name. It is good
    // as long as this lives.
    std::string OpenForWriting();
    // Writes all of it, in its order, to `out`.
    void SendTo(WebRender& out);

  private:
    void Append(std::string_view text);

    std::string held_;  // comes after what the file has
    int fd_ = -1;
};
