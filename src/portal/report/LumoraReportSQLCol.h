// LumoraReportSQLCol.h: how the columns of a report look, as its column definition file says.
#pragma once

// One column of a report. Every field is NUL-terminated UTF-8; longer text was cut.
struct LumoraSQLColumnDescription {
    char fieldname[64];     // the result column shown, whatever its case
    char style[64];         // text, number, time, money, percent or date; empty is text
    char description[256];  // the heading
    char linkpage[64];      // where a click on the cell leads
    char linkdetail[384];
    char grouptitle[64];  // heading above neighbours that share it
    char totaltype[10];   // empty, sum, count, avg or percent
    char avgfield[64];    // avg and percent: the result column that is summed up,
    char percentdiv[64];  // and the one whose sum divides it
};

// The columns of one report, in the order of display.
//
// The file has one column a line: up to nine words in the order of the fields above, parted by
// blanks, double quotes keeping a phrase together and "" standing for an empty one. Words that are
// missing are empty; empty lines are skipped.
class LumoraReportSQLCol {
  public:
    static constexpr int kMaxColumns = 200;  // with the terminating entry

    // Reads `reportFile` below the folder `dirname` ("/Norvane/config/reports/"). The name may lead
    // into another folder of /Norvane/config ("../mobilityReports/std.col"). A name that leads
    // elsewhere, or a file that cannot be opened, is reported on the console and thrown as a text.
    // Columns beyond the 199th are counted and dropped.
    LumoraReportSQLCol(const char* dirname, const char* reportFile);
    LumoraReportSQLCol(const LumoraReportSQLCol&) = delete;
    LumoraReportSQLCol& operator=(const LumoraReportSQLCol&) = delete;

    // The first column; the array ends with an entry of empty `fieldname` and `style`.
    const LumoraSQLColumnDescription* columns() const { return columns_; }
    int count() const { return count_; }
    // How many columns of the file there was no room for.
    int dropped() const { return dropped_; }

    const LumoraSQLColumnDescription* begin() const { return columns_; }
    const LumoraSQLColumnDescription* end() const { return columns_ + count_; }

  private:
    void AddLine(const char* line);

    // Not initialised: most reports use a dozen of the entries.
    LumoraSQLColumnDescription columns_[kMaxColumns];
    int count_ = 0;
    int dropped_ = 0;
};
