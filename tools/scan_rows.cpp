#include "scan_rows.h"

#include <algorithm>
#include <cstdio>

#include "data_set.h"
#include "json_writer.h"
#include "places.h"
#include "utf8_text.h"
#include "value_kinds.h"

namespace pgtool {

namespace {

// Longer values are read one by one when they are wanted.
constexpr uint32_t kLoadedOnScan = 256;
constexpr size_t kWidestColumn = 64;

bool IsHalfTag(const std::string& text) {
    return text.size() == 4 && text.find_first_not_of("0123456789abcdefABCDEF") == text.npos;
}

// Texts whose value representation got lost on the way.
bool IsPrintable(const pgkit::element& element) {
    if (element.length() > kLoadedOnScan) return false;
    const std::string bytes = BytesOf(element);
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

std::string CellOf(const pgkit::element& element, bool raw) {
    if (element.is_sequence()) return std::to_string(element.item_count()) + " items";
    switch (KindOf(element.vr())) {
        case ValueKind::Bytes:
        case ValueKind::Unknown:
            if (element.vr() == VR_UN && IsPrintable(element)) return BytesOf(element);
            return element.is_encapsulated() ? "encapsulated"
                                             : std::to_string(element.length()) + " bytes";
        case ValueKind::Text:
            return raw ? BytesOf(element) : element.text();
        default:
            return element.text();
    }
}

void Put(const std::string& text) { std::fwrite(text.data(), 1, text.size(), stdout); }

std::string Quoted(const std::string& text) {
    const bool isPlain = text.find_first_of(",\"\r\n") == text.npos;
    if (isPlain && !text.starts_with(' ') && !text.ends_with(' ')) return text;
    std::string quoted = "\"";
    for (const char c : text)
        quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + "\"";
}

class CsvPrinter : public RowPrinter {
  public:
    CsvPrinter(const std::vector<ScanColumn>& columns, const TextOptions& texts) : texts_(texts) {
        Put("path");
        for (const ScanColumn& column : columns)
            Put("," + Quoted(column.name));
        Put("\n");
    }
    void Print(const std::vector<ScanRow>& rows) override {
        for (const ScanRow& row : rows) {
            std::string line = Quoted(Shown(row.path, texts_));
            for (const std::string& value : row.values)
                line += "," + Quoted(Shown(value, texts_));
            Put(line + "\n");
        }
    }

  private:
    const TextOptions texts_;
};

// A member for each element that is there.
class JsonLinesPrinter : public RowPrinter {
  public:
    explicit JsonLinesPrinter(const std::vector<ScanColumn>& columns) : columns_(columns) {}
    void Print(const std::vector<ScanRow>& rows) override {
        for (const ScanRow& row : rows) {
            JsonWriter json(stdout);
            json.BeginObject();
            json.Key("path");
            json.Text(WellFormedUtf8(row.path));
            for (size_t i = 0; i < columns_.size(); ++i) {
                if (!row.isThere[i]) continue;
                json.Key(columns_[i].name);
                json.Text(WellFormedUtf8(row.values[i]));
            }
            json.EndObject();
        }
    }

  private:
    const std::vector<ScanColumn> columns_;
};

// Columns are as wide as the widest of the first rows: later ones that are wider push what is
// behind them aside.
class TablePrinter : public RowPrinter {
  public:
    TablePrinter(const std::vector<ScanColumn>& columns, const TextOptions& texts) : texts_(texts) {
        head_.push_back("path");
        for (const ScanColumn& column : columns)
            head_.push_back(column.name);
    }
    void Print(const std::vector<ScanRow>& rows) override {
        if (widths_.empty()) Begin(rows);
        for (const ScanRow& row : rows)
            Line(CellsOf(row));
    }

  private:
    std::vector<std::string> CellsOf(const ScanRow& row) const {
        std::vector<std::string> cells = {Shown(row.path, texts_)};
        for (const std::string& value : row.values)
            cells.push_back(Shown(value, texts_));
        return cells;
    }

    void Begin(const std::vector<ScanRow>& rows) {
        Widen(head_);
        for (const ScanRow& row : rows)
            Widen(CellsOf(row));
        Line(head_);
    }

    void Widen(const std::vector<std::string>& cells) {
        widths_.resize(cells.size());
        for (size_t i = 0; i < cells.size(); ++i)
            widths_[i] = std::min(std::max(widths_[i], CharacterCount(cells[i])), kWidestColumn);
    }

    void Line(const std::vector<std::string>& cells) const {
        std::string line;
        size_t gap = 0;
        for (size_t i = 0; i < cells.size(); ++i) {
            line += std::string(gap, ' ') + cells[i];
            const size_t width = CharacterCount(cells[i]);
            gap = 2 + (width < widths_[i] ? widths_[i] - width : 0);
        }
        Put(line + "\n");
    }

    const TextOptions texts_;
    std::vector<std::string> head_;
    std::vector<size_t> widths_;
};

}  // namespace

std::vector<ScanColumn> ColumnsOf(const std::string& list, std::string& complaint) {
    std::vector<std::string> words(1);
    for (const char c : list) {
        if (c == ',') {
            words.emplace_back();
        } else if (c != ' ') {
            words.back() += c;
        }
    }
    std::vector<ScanColumn> columns;
    for (size_t i = 0; i < words.size(); ++i) {
        std::string place = words[i];
        if (IsHalfTag(place) && i + 1 < words.size() && IsHalfTag(words[i + 1]))
            place += "," + words[++i];
        if (!IsPlace(place)) {
            complaint = NoSuchPlace(place);
            return {};
        }
        const auto tag = pgkit::tag::named(place);
        const std::string keyword = tag ? tag->keyword() : "";
        columns.push_back({keyword.empty() ? place : keyword, place});
    }
    return columns;
}

pgkit::error ReadRow(const std::vector<ScanColumn>& columns, bool raw, ScanRow& row) {
    const auto root = Open(row.path, {kLoadedOnScan, PG_OPEN_SKIP_FRAGMENTS, false, &row.damage});
    if (!root) return root.error();
    for (const ScanColumn& column : columns) {
        const pgkit::element element = root->find(column.place);
        row.isThere.push_back(static_cast<bool>(element));
        row.values.push_back(element ? CellOf(element, raw) : "");
    }
    return {};
}

std::unique_ptr<RowPrinter> MakeRowPrinter(const std::string& format,
                                           const std::vector<ScanColumn>& columns,
                                           const TextOptions& texts) {
    if (format == "jsonl") return std::make_unique<JsonLinesPrinter>(columns);
    if (format == "table") return std::make_unique<TablePrinter>(columns, texts);
    return std::make_unique<CsvPrinter>(columns, texts);
}

}  // namespace pgtool
