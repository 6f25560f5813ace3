#include "data/sorting.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <limits>
#include <memory>
#include <thread>

#include "data/delimited_file.hpp"
#include "numeric/radix_sort.hpp"
#include "xlw/cell_conversions.hpp"
#include "xlw/cell_matrix.hpp"

namespace zentable {

namespace {

constexpr const char* kKeysShape =
    "keys must have two columns, one for variable names and the other for values of sorting order";

struct KeyRequest {
    std::string name;
    bool descending = false;
};

// Any negative order sorts descending, anything else ascending.
std::vector<KeyRequest> read_key_requests(const CellMatrix& keys) {
    if (keys.ColumnsInStructure() != 2) {
        throw kKeysShape;
    }
    std::vector<KeyRequest> out(keys.RowsInStructure());
    for (std::size_t i = 0; i < out.size(); ++i) {
        out[i].name = trim(cell_to_text(keys(i, 0)));
        out[i].descending = cell_to_double(keys(i, 1)) < 0.0;
    }
    return out;
}

std::size_t find_key(const svec& names, const std::string& key, const char* where) {
    const auto it = std::find(names.begin(), names.end(), key);
    if (it == names.end()) {
        throw "key " + key + " cannot be found in " + where;
    }
    return static_cast<std::size_t>(it - names.begin());
}

// An unsigned integer whose order is the order of the key, for the first two
// keys, so that most comparisons stay inside one small record. Equal codes
// of numbers are equal numbers; of texts, only when the texts are short.
std::uint64_t order_code(double value) {
    if (std::isnan(value)) {
        return std::numeric_limits<std::uint64_t>::max();  // after every number, as FreqKeyLess
    }
    return order_key(value == 0.0 ? 0.0 : value);  // -0 equals 0
}

// The first seven bytes, then the length up to 8: the order of the texts,
// and equal codes below length 8 are equal texts.
std::uint64_t order_code(std::string_view text) {
    std::uint64_t code = 0;
    for (std::size_t i = 0; i < 7; ++i) {
        const auto byte = i < text.size() ? static_cast<unsigned char>(text[i]) : 0u;
        code = (code << 8) | byte;
    }
    return (code << 8) | std::min<std::size_t>(text.size(), 8);
}

std::uint64_t order_code(const SortKey& key, std::size_t row) {
    const std::uint64_t code =
        key.numeric ? order_code(key.values[row]) : order_code(key.texts[row]);
    return key.descending ? ~code : code;
}

// Whether equal codes of this row's key say that the keys are equal.
bool code_is_exact(const SortKey& key, std::size_t row) {
    return key.numeric || key.texts[row].size() < 8;
}

bool nan_last_less(double a, double b) {
    if (std::isnan(a)) {
        return false;
    }
    return std::isnan(b) || a < b;
}

// -1, 0 or 1 as row a sorts before, with or after row b on this key.
int compare_rows(const SortKey& key, std::size_t a, std::size_t b) {
    int c = 0;
    if (key.numeric) {
        c = nan_last_less(key.values[a], key.values[b])
                ? -1
                : (nan_last_less(key.values[b], key.values[a]) ? 1 : 0);
    } else {
        const int t = key.texts[a].compare(key.texts[b]);
        c = (t > 0) - (t < 0);
    }
    return key.descending ? -c : c;
}

constexpr std::size_t kParallelRows = 1 << 16;

struct CodedRow {
    std::uint64_t first = 0;
    std::uint64_t second = 0;
    std::uint32_t row = 0;
    bool first_exact = true;
    bool second_exact = true;
};

// A whole file and where its records lie, each kept as the text it was.
struct FileRecords {
    std::unique_ptr<char[]> bytes;
    std::string_view text;
    std::string_view byte_order_mark;
    std::string_view head;                   // with its line end
    std::vector<std::string_view> records;   // without their newlines
    std::deque<std::string> quoted_keys[2];  // unquoted key texts, which no record holds as such
};

}  // namespace

double atof_value(std::string_view text) {
    if (!text.empty() &&
        (std::isdigit(static_cast<unsigned char>(text[0])) || text[0] == '-' || text[0] == '.')) {
        double value = 0.0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        // Both round correctly: where the fast parse takes the whole text, the
        // two give the same double.
        if (error == std::errc() && end == text.data() + text.size()) {
            return value;
        }
    }
    return std::atof(std::string(text).c_str());
}

std::vector<std::size_t> sorted_rows(const std::vector<SortKey>& keys, std::size_t rows) {
    std::vector<CodedRow> coded(rows);
    for (std::size_t i = 0; i < rows; ++i) {
        coded[i].row = static_cast<std::uint32_t>(i);
        if (!keys.empty()) {
            coded[i].first = order_code(keys[0], i);
            coded[i].first_exact = code_is_exact(keys[0], i);
        }
        if (keys.size() > 1) {
            coded[i].second = order_code(keys[1], i);
            coded[i].second_exact = code_is_exact(keys[1], i);
        }
    }
    const auto less = [&](const CodedRow& a, const CodedRow& b) {
        if (a.first != b.first) {
            return a.first < b.first;
        }
        // Equal codes hold equal lengths, so one row tells whether they are exact.
        if (!a.first_exact) {
            if (const int c = compare_rows(keys[0], a.row, b.row)) {
                return c < 0;
            }
        }
        if (a.second != b.second) {
            return a.second < b.second;
        }
        for (std::size_t k = a.second_exact ? 2 : 1; k < keys.size(); ++k) {
            if (const int c = compare_rows(keys[k], a.row, b.row)) {
                return c < 0;
            }
        }
        return false;
    };
    // Two halves sorted side by side and merged: a stable merge keeps the
    // first half's rows first among equals, so the whole stays stable.
    const std::size_t half = rows >= kParallelRows ? rows / 2 : 0;
    std::thread first_half;
    if (half > 0) {
        first_half =
            std::thread([&] { std::stable_sort(coded.begin(), coded.begin() + half, less); });
    }
    std::stable_sort(coded.begin() + half, coded.end(), less);
    if (half > 0) {
        first_half.join();
        std::inplace_merge(coded.begin(), coded.begin() + half, coded.end(), less);
    }
    std::vector<std::size_t> order(rows);
    for (std::size_t i = 0; i < rows; ++i) {
        order[i] = coded[i].row;
    }
    return order;
}

CellMatrix data_sort(const CellMatrix& inputData, const CellMatrix& keys) {
    const std::vector<KeyRequest> requests = read_key_requests(keys);
    const std::size_t rows = inputData.RowsInStructure();
    const std::size_t columns = inputData.ColumnsInStructure();
    if (rows == 0) {
        return inputData;
    }
    svec names(columns);
    for (std::size_t j = 0; j < columns; ++j) {
        names[j] = trim(cell_to_text(inputData(0, j)));
    }
    std::vector<std::size_t> key_columns;
    for (const KeyRequest& request : requests) {
        key_columns.push_back(find_key(names, request.name, "data table"));
    }

    const std::size_t records = rows - 1;
    std::vector<svec> texts(requests.size(), svec(records));
    std::vector<SortKey> sort_keys(requests.size());
    for (std::size_t k = 0; k < requests.size(); ++k) {
        for (std::size_t i = 0; i < records; ++i) {
            texts[k][i] = trim(cell_to_text(inputData(i + 1, key_columns[k])));
        }
        SortKey& key = sort_keys[k];
        key.descending = requests[k].descending;
        key.numeric = records > 0 && is_number(texts[k][0]);
        if (key.numeric) {
            key.values.reserve(records);
            for (const std::string& text : texts[k]) {
                key.values.push_back(atof_value(text));
            }
        } else {
            key.texts.assign(texts[k].begin(), texts[k].end());
        }
    }

    const std::vector<std::size_t> order = sorted_rows(sort_keys, records);
    CellMatrix out(rows, columns);
    for (std::size_t j = 0; j < columns; ++j) {
        out(0, j) = inputData(0, j);
    }
    for (std::size_t i = 0; i < records; ++i) {
        for (std::size_t j = 0; j < columns; ++j) {
            out(i + 1, j) = inputData(order[i] + 1, j);
        }
    }
    return out;
}

namespace {

// The file in one block: a sort needs every record at once, and the records
// are then written from where they lie.
void read_whole_file(const std::string& filename, FileRecords& out) {
    std::FILE* file = std::fopen(filename.c_str(), "rb");
    struct stat info {};
    if (file == nullptr || ::fstat(::fileno(file), &info) != 0 || S_ISDIR(info.st_mode)) {
        if (file != nullptr) {
            std::fclose(file);
        }
        throw "Error: cannot open input file " + filename;
    }
    std::size_t capacity = S_ISREG(info.st_mode) ? static_cast<std::size_t>(info.st_size) : 0;
    std::size_t size = 0;
    out.bytes.reset(new char[capacity + 1]);
    prefer_huge_pages(out.bytes.get(), capacity);
    for (;;) {
        if (size == capacity) {
            // A pipe or a file that grew: read on into a larger block.
            const std::size_t larger = std::max<std::size_t>(capacity * 2, 1 << 16);
            std::unique_ptr<char[]> more(new char[larger + 1]);
            prefer_huge_pages(more.get(), larger);
            if (size > 0) {
                std::memcpy(more.get(), out.bytes.get(), size);
            }
            out.bytes = std::move(more);
            capacity = larger;
        }
        const std::size_t got = std::fread(out.bytes.get() + size, 1, capacity - size, file);
        size += got;
        if (got == 0) {
            break;
        }
    }
    std::fclose(file);
    out.text = std::string_view(out.bytes.get(), size);
}

std::string_view trimmed_view(std::string_view field) {
    const std::size_t begin = field.find_first_not_of(" \t\n");
    if (begin == std::string_view::npos) {
        return {};
    }
    return field.substr(begin, field.find_last_not_of(" \t\n") - begin + 1);
}

void read_records(const std::string& filename, char delimiter,
                  const std::vector<KeyRequest>& requests, FileRecords& out,
                  std::vector<SortKey>& keys) {
    read_whole_file(filename, out);
    const std::string_view text = out.text;
    std::size_t at = 0;
    if (text.substr(0, 3) == "\xEF\xBB\xBF") {
        out.byte_order_mark = text.substr(0, 3);
        at = 3;
    }
    auto next_record = [&](std::size_t start) {
        const std::size_t end = record_end(text, start, delimiter);
        if (end == std::string_view::npos) {
            throw "unterminated quoted field in " + filename;
        }
        return end;
    };

    Fields fields;
    std::vector<std::size_t> columns;
    if (at < text.size()) {
        const std::size_t end = next_record(at);
        out.head = text.substr(at, end - at);
        at = end;
        split_fields(out.head, delimiter, fields);
        svec names;
        for (std::string_view field : fields) {
            names.emplace_back(trimmed_view(field));
            if (names.back().empty()) {
                names.back() = unnamed_column(names.size() - 1);
            }
        }
        for (const KeyRequest& request : requests) {
            columns.push_back(find_key(names, request.name, "data file"));
        }
    } else if (!requests.empty()) {
        find_key({}, requests[0].name, "data file");
    }

    // As many records as lines, but for quoted line breaks: one count
    // spares the copies of a growing vector.
    out.records.reserve(static_cast<std::size_t>(std::count(text.begin() + at, text.end(), '\n')) +
                        1);
    while (at < text.size()) {
        const std::size_t end = next_record(at);
        std::string_view record = text.substr(at, end - at);
        at = end;
        if (!record.empty() && record.back() == '\n') {
            record.remove_suffix(1);
        }
        out.records.push_back(record);
    }

    const std::size_t count = out.records.size();
    keys.assign(requests.size(), SortKey());
    for (std::size_t k = 0; k < requests.size(); ++k) {
        keys[k].descending = requests[k].descending;
    }
    // The kinds come from the first record; then each half of the records
    // is read on its own thread into its own slots.
    auto key_fields = [&](Fields& fields, std::size_t k) {
        return trimmed_view(columns[k] < fields.size() ? fields[columns[k]] : std::string_view());
    };
    if (count > 0) {
        split_fields(out.records[0], delimiter, fields);
        for (std::size_t k = 0; k < keys.size(); ++k) {
            keys[k].numeric = is_number(key_fields(fields, k));
            if (keys[k].numeric) {
                keys[k].values.resize(count);
            } else {
                keys[k].texts.resize(count);
            }
        }
    }
    const char* const begin = text.data();
    const char* const finish = begin + text.size();
    auto read_keys = [&](std::size_t from, std::size_t to, std::deque<std::string>& copies) {
        Fields fields;
        for (std::size_t i = from; i < to; ++i) {
            split_fields(out.records[i], delimiter, fields);
            for (std::size_t k = 0; k < keys.size(); ++k) {
                std::string_view value = key_fields(fields, k);
                if (keys[k].numeric) {
                    keys[k].values[i] = atof_value(value);
                    continue;
                }
                // A quoted field's text lies in the splitter's own buffer.
                if (!value.empty() && (value.data() < begin || value.data() >= finish)) {
                    value = copies.emplace_back(value);
                }
                keys[k].texts[i] = value;
            }
        }
    };
    const std::size_t half = count >= kParallelRows ? count / 2 : 0;
    std::thread first_half;
    if (half > 0) {
        first_half = std::thread([&] { read_keys(0, half, out.quoted_keys[0]); });
    }
    read_keys(half, count, out.quoted_keys[1]);
    if (half > 0) {
        first_half.join();
    }
}

}  // namespace

namespace {

// The sorted file goes to a new file beside the output, which then takes the
// output's name: a failure half way leaves the input, and any old output,
// whole.
class SiblingFile {
  public:
    explicit SiblingFile(const std::string& target) : target_(target) {
        std::string pattern = target + ".XXXXXX";
        const int descriptor = ::mkstemp(pattern.data());
        if (descriptor < 0) {
            throw "Error: cannot open output file " + target;
        }
        path_ = pattern;
        // mkstemp makes a private file; the result gets the old file's mode,
        // or a new file's.
        struct stat info {};
        if (::stat(target.c_str(), &info) == 0) {
            ::fchmod(descriptor, info.st_mode & 07777);
        } else {
            const mode_t mask = ::umask(0);
            ::umask(mask);
            ::fchmod(descriptor, 0666 & ~mask);
        }
        file_ = ::fdopen(descriptor, "w");
        if (file_ == nullptr) {
            ::close(descriptor);
            std::remove(path_.c_str());
            throw "Error: cannot open output file " + target;
        }
        pending_.reserve(kBlock);
    }
    ~SiblingFile() {
        if (file_ != nullptr) {
            std::fclose(file_);
            std::remove(path_.c_str());
        }
    }
    SiblingFile(const SiblingFile&) = delete;
    SiblingFile& operator=(const SiblingFile&) = delete;

    // Records are short: they gather in a block of our own, which goes out whole.
    void write(std::string_view text) {
        if (pending_.size() + text.size() > kBlock) {
            flush();
        }
        pending_.append(text);
    }

    void replace_target() {
        flush();
        const bool written = std::ferror(file_) == 0;
        const bool closed = std::fclose(file_) == 0;
        file_ = nullptr;
        if (!written || !closed || std::rename(path_.c_str(), target_.c_str()) != 0) {
            std::remove(path_.c_str());
            throw "Error: cannot write output file " + target_;
        }
    }

  private:
    static constexpr std::size_t kBlock = 1 << 20;

    void flush() {
        std::fwrite(pending_.data(), 1, pending_.size(), file_);
        pending_.clear();
    }

    std::string target_;
    std::string path_;
    std::string pending_;
    std::FILE* file_ = nullptr;
};

}  // namespace

CellMatrix sort_file(const std::string& filename, const CellMatrix& keys,
                     const std::string& outfilename, const CellMatrix& delimiter) {
    const std::vector<KeyRequest> requests = read_key_requests(keys);
    // File names arrive as one text, so the frame has already taken the
    // first cell of a larger outfilename.
    const std::string named = trim(outfilename);
    const std::string output = named.empty() ? filename : named;
    const char separator = read_delimiter(delimiter);

    FileRecords records;
    std::vector<SortKey> sort_keys;
    read_records(filename, separator, requests, records, sort_keys);
    const std::size_t count = records.records.size();
    const std::vector<std::size_t> order = sorted_rows(sort_keys, count);

    SiblingFile file(output);
    file.write(records.byte_order_mark);
    file.write(records.head);
    if (count > 0 && (records.head.empty() || records.head.back() != '\n')) {
        file.write("\n");
    }
    for (std::size_t i : order) {
        file.write(records.records[i]);
        file.write("\n");
    }
    file.replace_target();
    return CellMatrix("Sorted data is saved to " + output);
}

}  // namespace zentable
