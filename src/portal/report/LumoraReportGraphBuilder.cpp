#include "portal/report/LumoraReportGraphBuilder.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <unordered_map>
#include <utility>

#include "portal/context/PortalContext.h"
#include "portal/report/LumoraReportGraphHeat.h"
#include "portal/report/ReportColumns.h"

namespace {

constexpr size_t kMostBars = 31;         // of labels in an order: a month of days
constexpr size_t kMostKept = 1000;       // rows, before all but the largest are dropped
constexpr size_t kMostKeyed = 20000;     // rows of a report with a key column
constexpr size_t kMostPlaces = 100000;   // of points by label and key, filled or not
constexpr double kMostOthers = 1.0 / 3;  // of a pie, in one slice
constexpr int kChartWidth = 900;
constexpr int kChartHeight = 320;

// Neighbours differ in hue and in lightness, so that they can be told apart without colours.
constexpr const char* kColours[] = {"#12616d", "#e8a33d", "#6b4fa0",
                                    "#6cb8e6", "#b8442a", "#9aa7ad"};

// Fields whose values stand in an order of their own.
constexpr std::string_view kOrderedFields[] = {"day",  "date", "week",     "weekday", "month",
                                               "year", "hour", "interval", "time"};

bool IsSummed(const LumoraSQLColumnDescription& column) {
    return strcmp(column.totaltype, "sum") == 0 || strcmp(column.totaltype, "count") == 0;
}

ReportGraphValue SumOf(const ReportGraphValue& a, const ReportGraphValue& b) {
    ReportGraphValue sum;
    sum.number = a.number + b.number;
    char text[32];
    snprintf(text, sizeof text, "%.12g", sum.number);
    sum.text = text;
    return sum;
}

// The next word of a list, which it is taken from.
std::string_view TakeWord(std::string_view& list, char separator) {
    const size_t end = list.find(separator);
    const std::string_view word = list.substr(0, end);
    list = end == list.npos ? std::string_view() : list.substr(end + 1);
    return word;
}

}  // namespace

LumoraReportGraphBuilder::LumoraReportGraphBuilder(const LumoraReportSQLCol& columns,
                                                   const std::vector<std::string_view>& names,
                                                   const char* format, const char* multikeyfield)
    : columns_(columns), names_(names.begin(), names.end()) {
    if (multikeyfield != nullptr && *multikeyfield != '\0') key_ = Find(multikeyfield);
    ReadFormat(format != nullptr ? format : "");
}

void LumoraReportGraphBuilder::ReadFormat(std::string_view format) {
    constexpr struct {
        std::string_view word;
        Kind kind;
    } kKinds[] = {{"graph:none", kNone},   {"graph:bar", kBar},   {"graph:glass", kGlass},
                  {"graph:stack", kStack}, {"graph:line", kLine}, {"graph:pie", kPie},
                  {"graph:heat", kHeat}};
    std::string_view series;
    std::string_view label;
    while (!format.empty()) {
        const std::string_view word = TakeWord(format, ' ');
        for (const auto& each : kKinds)
            if (word == each.word) kind_ = each.kind;
        if (word.starts_with("series:")) series = word.substr(strlen("series:"));
        if (word.starts_with("label:")) label = word.substr(strlen("label:"));
    }
    if (kind_ != kNone) ChooseColumns(series, label);
}

// The column of that field; its field is -1 when the result has none. Its description is null when
// the definition does not show it.
LumoraReportGraphBuilder::Column LumoraReportGraphBuilder::Find(std::string_view fieldname) const {
    Column column;
    column.field = FindResultColumn({names_.begin(), names_.end()}, fieldname);
    if (column.field < 0) return column;
    for (const LumoraSQLColumnDescription& each : columns_) {
        if (strcasecmp(each.fieldname, names_[column.field].c_str()) != 0) continue;
        column.description = &each;
        if (!ParseReportStyle(each.style, column.style)) column.field = -1;
        break;
    }
    return column;
}

void LumoraReportGraphBuilder::ChooseColumns(std::string_view series, std::string_view label) {
    if (!label.empty()) label_ = Find(label);
    const bool isLabelChosen = label_.field >= 0;
    for (const LumoraSQLColumnDescription& each : columns_) {
        const Column column = Find(each.fieldname);
        if (column.field < 0 || column.field == key_.field) continue;
        if (label_.field < 0)
            label_ = column;
        else if (kind_ == kHeat && key_.field < 0 && column.field != label_.field)
            key_ = column;
    }
    while (!series.empty()) {
        const Column column = Find(TakeWord(series, ','));
        const bool usable = column.field >= 0 && column.description != nullptr;
        // One axis has one unit.
        if (usable && (drawn_.empty() || drawn_[0].style == column.style)) drawn_.push_back(column);
    }
    chosenSeries_ = !drawn_.empty();
    if (!chosenSeries_) ChooseSeries();
    const size_t most = key_.field >= 0 ? 1 : kMostSeries;
    if (drawn_.size() > most) drawn_.resize(most);
    merges_ = isLabelChosen && key_.field < 0 && AreSums();
    // Numbers that stand in no order name nothing that could be compared.
    const bool isNamed = label_.field >= 0 && (IsOrdered() || label_.style == ReportStyle::kText);
    if (!isNamed || (kind_ == kHeat && key_.field < 0)) drawn_.clear();
}

// The columns of that style, but for label and key: those with a sum that share a group with the
// first of them, or the first of any.
std::vector<LumoraReportGraphBuilder::Column> LumoraReportGraphBuilder::Where(ReportStyle style,
                                                                              bool summed) const {
    std::vector<Column> found;
    for (const LumoraSQLColumnDescription& each : columns_) {
        const Column column = Find(each.fieldname);
        const bool taken = column.field == label_.field || column.field == key_.field;
        if (column.field < 0 || taken || column.style != style) continue;
        if (summed && !IsSummed(each)) continue;
        if (!found.empty() && strcmp(found[0].description->grouptitle, each.grouptitle) != 0)
            continue;
        found.push_back(column);
        if (!summed) break;
    }
    return found;
}

void LumoraReportGraphBuilder::ChooseSeries() {
    constexpr struct {
        ReportStyle style;
        bool summed;
    } kWishes[] = {{ReportStyle::kNumber, true}, {ReportStyle::kTime, true},
                   {ReportStyle::kMoney, true},  {ReportStyle::kPercent, false},
                   {ReportStyle::kTime, false},  {ReportStyle::kMoney, false},
                   {ReportStyle::kNumber, false}};
    for (const auto& wish : kWishes) {
        drawn_ = Where(wish.style, wish.summed);
        if (!drawn_.empty()) return;
    }
}

ReportGraphValue LumoraReportGraphBuilder::ValueOf(const Column& column,
                                                   const std::vector<std::string_view>& row) const {
    ReportGraphValue value;
    ReportDecimal decimal;
    if (!ParseReportDecimal(row[column.field], decimal)) return value;
    AppendReportDecimal(value.text, ReportStyle::kNumber, decimal);
    value.number = static_cast<double>(decimal.units) / ReportDecimal::kScale;
    return value;
}

void LumoraReportGraphBuilder::AddRow(const std::vector<std::string_view>& row) {
    if (drawn_.empty() || tooMany_) return;
    ++rows_;
    double height = 0;
    for (const Column& column : drawn_) {
        ReportDecimal decimal;
        if (!ParseReportDecimal(row[column.field], decimal)) continue;
        const double number = static_cast<double>(decimal.units) / ReportDecimal::kScale;
        height += number;
        if (&column == &drawn_[0]) total_ += number;
    }
    if (height <= smallest_) return;

    Point point{std::string(row[label_.field]), {}, {}, height};
    if (key_.field >= 0) point.key = row[key_.field];
    for (const Column& column : drawn_) {
        ReportGraphValue& value = point.values.emplace_back(ValueOf(column, row));
        // Where nothing was counted there is nothing to see.
        if (link_ != nullptr && *column.description->linkpage != '\0' && value.number != 0)
            value.link = link_(*column.description, row);
    }
    if (merges_ && Merge(point)) return;
    points_.push_back(std::move(point));
    const size_t most = key_.field >= 0 || merges_ ? kMostKeyed : kMostKept;
    if (points_.size() > most) KeepLargest();
}

// Adds the point to the one of its label, if there is one: together they lead nowhere.
bool LumoraReportGraphBuilder::Merge(const Point& point) {
    const auto [at, isNew] = byLabel_.try_emplace(point.label, points_.size());
    if (isNew) return false;
    Point& to = points_[at->second];
    to.height += point.height;
    for (size_t i = 0; i < to.values.size(); ++i)
        to.values[i] = SumOf(to.values[i], point.values[i]);
    return true;
}

void LumoraReportGraphBuilder::KeepLargest() {
    if (key_.field >= 0 || merges_ || IsOrdered()) {
        tooMany_ = true;
        points_.clear();
        return;
    }
    std::stable_sort(points_.begin(), points_.end(),
                     [](const Point& a, const Point& b) { return a.height > b.height; });
    points_.resize(kTopNames);
    smallest_ = std::max(points_.back().height, 0.0);
}

bool LumoraReportGraphBuilder::AreSums() const {
    return std::all_of(drawn_.begin(), drawn_.end(),
                       [](const Column& column) { return IsSummed(*column.description); });
}

bool LumoraReportGraphBuilder::IsOrdered() const {
    const std::string_view field = names_[label_.field];
    return label_.style == ReportStyle::kDate ||
           std::find(std::begin(kOrderedFields), std::end(kOrderedFields), field) !=
               std::end(kOrderedFields);
}

ReportGraphData LumoraReportGraphBuilder::ByColumn() {
    ReportGraphData data;
    for (const Column& column : drawn_)
        data.series.push_back({column.description->description, {}});
    for (Point& point : points_) {
        data.labels.push_back(std::move(point.label));
        for (size_t i = 0; i < drawn_.size(); ++i)
            data.series[i].values.push_back(std::move(point.values[i]));
    }
    return data;
}

ReportGraphData LumoraReportGraphBuilder::ByKey() {
    ReportGraphData data;
    std::unordered_map<std::string, size_t> labels;
    std::unordered_map<std::string, size_t> keys;
    for (Point& point : points_) {
        labels.try_emplace(point.label, labels.size());
        keys.try_emplace(point.key, keys.size());
    }
    // A chart of them would be nearly empty.
    if (labels.size() * keys.size() > kMostPlaces) return data;
    for (Point& point : points_) {
        const size_t label = labels.at(point.label);
        if (label == data.labels.size()) data.labels.push_back(point.label);
        const size_t key = keys.at(point.key);
        if (key == data.series.size()) data.series.push_back({point.key, {}});
        std::vector<ReportGraphValue>& values = data.series[key].values;
        if (values.size() <= label) values.resize(label + 1);
        const bool repeats = AreSums() && !values[label].text.empty();
        values[label] =
            repeats ? SumOf(values[label], point.values[0]) : std::move(point.values[0]);
    }
    for (ReportGraphSeries& series : data.series)
        series.values.resize(data.labels.size());
    return data;
}

LumoraReportGraphBuilder::Kind LumoraReportGraphBuilder::Choose(const ReportGraphData& data) const {
    const bool several = data.series.size() > 1;
    if (data.HasNegative()) return kBar;  // stands for no part of a whole
    if (kind_ != kChoose) return kind_;
    if (IsOrdered() || data.HasOrderedLabels()) {
        if (data.labels.size() > kMostBars || !AreSums()) return kLine;
        return several ? kStack : kGlass;
    }
    if (!AreSums()) return several ? kBar : kGlass;
    if (several) return kStack;
    return data.labels.size() <= kMostSlices ? kPie : kGlass;
}

std::unique_ptr<LumoraReportGraph> LumoraReportGraphBuilder::Build(PortalContext& ctx,
                                                                   const char* title) {
    if (tooMany_ || rows_ < 2) return nullptr;
    ReportGraphData data = key_.field >= 0 ? ByKey() : ByColumn();
    if (data.labels.size() < 2 || data.RepeatsLabels() || !data.HasShape()) return nullptr;
    for (std::string& label : data.labels)
        if (label.empty()) label = "(none)";
    if (kind_ == kHeat)
        return std::make_unique<ReportHeatTable>(std::move(data), drawn_[0].style, title,
                                                 HeadingOf(label_), HeadingOf(key_));
    const bool isOrdered = IsOrdered() || data.HasOrderedLabels();
    if (isOrdered && data.labels.size() > kMostPoints) return nullptr;
    if (isOrdered) data.SortLabels();  // the rows may come in another order

    if (!chosenSeries_ && key_.field < 0 && AreSums() && (kind_ == kChoose || kind_ == kStack))
        data.DropWhole();
    std::string note;
    if (data.series.size() > kMostSeries) {
        note = "The " + std::to_string(kMostSeries) + " largest series of " +
               std::to_string(data.series.size()) + ".";
        data.KeepLargestSeries(kMostSeries);
    }
    Kind kind = Choose(data);
    if (kind == kPie && ShareOfOthers(data) > kMostOthers) kind = kGlass;
    const uint64_t labels = key_.field >= 0 || merges_ ? data.labels.size() : rows_;
    if (kind == kPie) {
        AddOthers(data);
    } else if (!isOrdered && labels > kMostNames) {
        data.KeepLargestLabels(kTopNames);
        if (!note.empty()) note += ' ';
        note += "The " + std::to_string(kTopNames) + " largest of " + std::to_string(labels) + ".";
    }
    return Draw(ctx, title, data, kind, std::move(note));
}

// What a pie would have to leave to one slice.
double LumoraReportGraphBuilder::ShareOfOthers(ReportGraphData data) const {
    if (data.labels.size() <= kMostSlices) return 0;
    data.series.resize(1);
    data.KeepLargestLabels(kMostSlices - 1);
    return 1 - data.series[0].Sum() / total_;
}

// Slices beyond the largest become one.
void LumoraReportGraphBuilder::AddOthers(ReportGraphData& data) const {
    data.series.resize(1);
    if (data.labels.size() <= kMostSlices) return;
    data.KeepLargestLabels(kMostSlices - 1);
    data.labels.push_back("Others");
    data.series[0].values.push_back(SumOf({"", total_, ""}, {"", -data.series[0].Sum(), ""}));
}

std::string LumoraReportGraphBuilder::HeadingOf(const Column& column) const {
    return column.description != nullptr ? column.description->description : "";
}

// What the value axis counts.
std::string LumoraReportGraphBuilder::ValueLegend(const PortalContext& ctx) const {
    const LumoraSQLColumnDescription& first = *drawn_[0].description;
    if (drawn_[0].style == ReportStyle::kTime) return OpenFlashGraph::kTimeLegend;
    const bool isOneGroup = std::all_of(drawn_.begin(), drawn_.end(), [&](const Column& column) {
        return strcmp(column.description->grouptitle, first.grouptitle) == 0;
    });
    std::string legend = isOneGroup ? first.grouptitle : "";
    if (drawn_.size() == 1) legend += (legend.empty() ? "" : ": ") + std::string(first.description);
    if (drawn_[0].style == ReportStyle::kMoney && !ctx.currency.IsEmpty())
        legend += " (" + std::string(ctx.currency.c_str()) + ")";
    return legend;
}

std::unique_ptr<LumoraReportGraph> LumoraReportGraphBuilder::Draw(PortalContext& ctx,
                                                                  const char* title,
                                                                  const ReportGraphData& data,
                                                                  Kind kind,
                                                                  std::string note) const {
    auto chart = std::make_unique<OpenFlashGraph>(kChartWidth, kChartHeight, title,
                                                  HeadingOf(label_).c_str(),
                                                  ValueLegend(ctx).c_str(), "reportChart");
    for (size_t i = 0; i < data.series.size(); ++i) {
        const ReportGraphSeries& from = data.series[i];
        OpenFlashGraphDataSeries& series =
            chart->AddDataSeries(std::make_unique<OpenFlashGraphDataSeries>(
                from.name.c_str(), kColours[i % std::size(kColours)], SeriesType(kind)));
        for (size_t at = 0; at < data.labels.size(); ++at) {
            const ReportGraphValue& value = from.values[at];
            // A line has a gap where a bar has no height.
            const char* none = kind == kLine ? "" : "0";
            series.AddValue(value.text.empty() ? none : value.text.c_str(), data.labels[at].c_str(),
                            /*isNumber=*/true);
            if (!value.link.empty()) series.SetLink(static_cast<int>(at), value.link.c_str());
        }
    }
    return std::make_unique<ReportChart>(std::move(chart), std::move(note));
}

const char* LumoraReportGraphBuilder::SeriesType(Kind kind) {
    switch (kind) {
        case kLine:
            return "line";
        case kPie:
            return "pie";
        case kStack:
            return "bar_stack";
        case kGlass:
            return "bar_glass";
        default:
            return "bar_filled";
    }
}
