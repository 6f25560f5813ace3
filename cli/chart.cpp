// Pictures of results, drawn by gnuplot from data and a script that live in a
// temporary folder for the length of one drawing.
#include "chart.hpp"

#include <unistd.h>

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <ostream>
#include <sstream>
#include <vector>

#include "print.hpp"
#include "xlw/cell_conversions.hpp"

namespace zentable::cli {

namespace {

namespace fs = std::filesystem;

std::string extension_of(const std::string& path) {
    std::string ext = fs::path(path).extension().string();
    for (char& c : ext)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return ext;
}

// One copy of a panel's table in a result: its columns by name, its rows of
// numbers, and the Total row when there is one.
struct Block {
    std::string name;  // what the curve is called when a result has several
    std::vector<std::string> columns;
    std::vector<std::vector<double>> rows;
    std::map<std::string, double> totals;
};

double number_or_nan(const CellValue& cell) {
    return cell.IsANumber() ? cell.NumericValue() : std::nan("");
}

// The text above a table names it, as a report names the variable a table of
// bins belongs to; failing that, the blocks are numbered.
std::string block_name(const CellMatrix& table, std::size_t header_row, std::size_t index) {
    for (std::size_t up = 1; up <= 2 && up <= header_row; ++up) {
        const CellValue& cell = table(header_row - up, 0);
        if (cell.IsString() && !trim(cell.StringValue(), 0).empty())
            return cell.StringValue();
    }
    return "table " + std::to_string(index + 1);
}

std::vector<Block> find_blocks(const CellMatrix& table, const std::string& header) {
    std::vector<Block> blocks;
    const std::size_t rows = table.RowsInStructure(), columns = table.ColumnsInStructure();
    for (std::size_t r = 0; r < rows; ++r) {
        if (!table(r, 0).IsString() || table(r, 0).StringValue() != header)
            continue;
        Block b;
        b.name = block_name(table, r, blocks.size());
        for (std::size_t j = 0; j < columns && table(r, j).IsString(); ++j)
            b.columns.push_back(table(r, j).StringValue());
        std::size_t k = r + 1;
        for (; k < rows && table(k, 0).IsANumber(); ++k) {
            b.rows.emplace_back();
            for (std::size_t j = 0; j < b.columns.size(); ++j)
                b.rows.back().push_back(number_or_nan(table(k, j)));
        }
        if (k < rows && table(k, 0).IsString() && table(k, 0).StringValue() == "Total")
            for (std::size_t j = 1; j < b.columns.size(); ++j)
                b.totals[b.columns[j]] = number_or_nan(table(k, j));
        if (!b.rows.empty())
            blocks.push_back(std::move(b));
        r = k - 1;
    }
    return blocks;
}

std::string number_for_gnuplot(double value) {
    return std::isfinite(value) ? cell_text(CellMatrix(value)(0, 0)) : "NaN";
}

// The expression with {Name}, {Sum:Name} and {Total:Name} made gnuplot's:
// columns are 1-based, the running sums follow the plain columns.
std::string gnuplot_expression(const std::string& expression, const Block& b) {
    std::string text;
    for (std::size_t i = 0; i < expression.size(); ++i) {
        if (expression[i] != '{') {
            text += expression[i];
            continue;
        }
        const std::size_t close = expression.find('}', i);
        std::string name = expression.substr(i + 1, close - i - 1);
        i = close;
        bool sum = false, total = false;
        if (name.rfind("Sum:", 0) == 0)
            sum = true, name = name.substr(4);
        else if (name.rfind("Total:", 0) == 0)
            total = true, name = name.substr(6);
        if (total) {
            const auto found = b.totals.find(name);
            if (found == b.totals.end())
                return "";
            text += "(" + number_for_gnuplot(found->second) + ")";
            continue;
        }
        // A number names a column by its place, for a column named after the data.
        std::size_t column = 0;
        const bool by_place =
            !name.empty() && name.find_first_not_of("0123456789") == std::string::npos;
        if (by_place)
            column = std::stoul(name) - 1;
        else
            while (column < b.columns.size() && b.columns[column] != name)
                ++column;
        if (column == b.columns.size())
            return "";
        text += "column(" + std::to_string(column + 1 + (sum ? b.columns.size() : 0)) + ")";
    }
    return text;
}

void write_data(const fs::path& file, const std::vector<Block>& blocks, bool from_origin) {
    std::ofstream data(file);
    for (const Block& b : blocks) {
        const std::size_t n = b.columns.size();
        if (from_origin)
            for (std::size_t j = 0; j < 2 * n; ++j)
                data << (j ? " " : "") << 0;
        if (from_origin)
            data << '\n';
        std::vector<double> sums(n, 0.0);
        for (const auto& row : b.rows) {
            for (std::size_t j = 0; j < n; ++j)
                data << (j ? " " : "") << number_for_gnuplot(row[j]);
            for (std::size_t j = 0; j < n; ++j) {
                sums[j] += std::isfinite(row[j]) ? row[j] : 0.0;
                data << ' ' << number_for_gnuplot(sums[j]);
            }
            data << '\n';
        }
        data << "\n\n";  // gnuplot's index: one block of data per curve
    }
}

std::string quoted_text(const std::string& text) {
    std::string q = "'";
    for (char c : text)
        q += c == '\'' ? std::string("''") : std::string(1, c);
    return q + "'";
}

std::string terminal_line(const OutputOptions& o) {
    const std::string ext = extension_of(o.plot);
    const std::string size = std::to_string(o.plot_width) + "," + std::to_string(o.plot_height);
    if (o.plot == "-")
        return "set terminal dumb size 100,30";
    if (ext == ".png")
        return "set terminal pngcairo size " + size;
    if (ext == ".svg")
        return "set terminal svg size " + size;
    // Cairo's PDF page is measured in inches; 100 pixels to the inch.
    return "set terminal pdfcairo size " + std::to_string(o.plot_width / 100.0) + "in," +
           std::to_string(o.plot_height / 100.0) + "in";
}

bool gnuplot_is_installed() {
    const char* path = std::getenv("PATH");
    std::stringstream dirs(path ? path : "");
    std::string dir;
    while (std::getline(dirs, dir, ':'))
        if (!dir.empty() && ::access((dir + "/gnuplot").c_str(), X_OK) == 0)
            return true;
    return false;
}

// A temporary folder that goes when the drawing is done, whatever happens.
class ScratchFolder {
  public:
    ScratchFolder() {
        std::string pattern = (fs::temp_directory_path() / "zentable-chart-XXXXXX").string();
        if (::mkdtemp(pattern.data()))
            path_ = pattern;
    }
    ~ScratchFolder() {
        std::error_code ignored;
        if (!path_.empty())
            fs::remove_all(path_, ignored);
    }
    const fs::path& path() const { return path_; }

  private:
    fs::path path_;
};

}  // namespace

bool is_chart_target(const std::string& path) {
    const std::string ext = extension_of(path);
    return path == "-" || ext == ".png" || ext == ".svg" || ext == ".pdf" || ext == ".dat";
}

int draw_chart(const FunctionInfo& f, const CellMatrix& table, const OutputOptions& o,
               std::ostream& out, std::ostream& err) {
    if (!gnuplot_is_installed()) {
        err << "zentable: cannot draw the chart: the gnuplot program is not installed "
               "(Debian's package gnuplot-nox)\n";
        return 1;
    }
    ScratchFolder scratch;
    if (scratch.path().empty()) {
        err << "zentable: cannot draw the chart: no temporary folder\n";
        return 1;
    }
    // The panels this result can draw: a report holds one kind of table of
    // several that its function may give, and some tables repeat per variable.
    struct Drawn {
        const ChartPanel* panel;
        std::vector<Block> blocks;
    };
    std::vector<Drawn> drawn;
    for (const ChartPanel& panel : f.chart) {
        Drawn d{&panel, {}};
        for (Block& b : find_blocks(table, panel.header))
            if (!gnuplot_expression(panel.x, b).empty() && !gnuplot_expression(panel.y, b).empty())
                d.blocks.push_back(std::move(b));
        if (!d.blocks.empty())
            drawn.push_back(std::move(d));
    }
    if (drawn.empty()) {
        err << "zentable: cannot draw the chart: the result has none of the tables it draws\n";
        return 1;
    }
    // A .dat file holds the points each panel draws, as gnuplot computed them.
    const bool points_only = extension_of(o.plot) == ".dat";
    auto points_file = [&](std::size_t p) {
        return scratch.path() / ("points" + std::to_string(p));
    };
    std::ostringstream script;
    if (!points_only)
        script << terminal_line(o) << "\nset output "
               << quoted_text((scratch.path() / "chart").string()) << "\n";
    script << "set key bottom right box opaque\nset style fill solid 0.5\n"
           << (o.plot == "-" ? "" : "set grid\n");
    if (drawn.size() > 1 && !points_only)
        script << "set multiplot layout 1," << drawn.size() << "\n";
    for (std::size_t p = 0; p < drawn.size(); ++p) {
        const ChartPanel& panel = *drawn[p].panel;
        const std::vector<Block>& blocks = drawn[p].blocks;
        const fs::path data = scratch.path() / ("panel" + std::to_string(p) + ".dat");
        write_data(data, blocks, panel.from_origin);
        script << "set title " << quoted_text(panel.title) << "\nset xlabel "
               << quoted_text(panel.x_label) << "\nset ylabel " << quoted_text(panel.y_label)
               << "\n";
        // A margin inside the frame keeps the outermost points off its edges;
        // bars fill their groups from edge to edge and stand on zero.
        const double width = 0.8 / static_cast<double>(blocks.size());
        if (panel.diagonal)
            script << "set offsets 0, 0, 0, 0\nset xrange [0:1]\nset yrange [0:1]\n";
        else if (panel.style == ChartPanel::bars)
            script << "set autoscale\nset autoscale xfix\nset offsets 0.5, 0.5, graph 0.05, 0\n"
                   << "set boxwidth " << width << " absolute\n";
        else
            script << "set autoscale\nset offsets graph 0.05, graph 0.05, graph 0.05, graph "
                      "0.05\n";
        script << (panel.style == ChartPanel::bars ? "set xtics 1\n" : "set xtics autofreq\n");
        // A key only where it tells curves apart.
        script << (blocks.size() > 1 || panel.diagonal ? "set key\n" : "unset key\n");
        if (points_only)
            script << "set table " << quoted_text(points_file(p).string()) << "\n";
        script << "plot ";
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            std::string x = gnuplot_expression(panel.x, blocks[i]);
            const std::string y = gnuplot_expression(panel.y, blocks[i]);
            if (panel.style == ChartPanel::bars && blocks.size() > 1)
                x += "+(" +
                     std::to_string((static_cast<double>(i) - (blocks.size() - 1) / 2.0) * width) +
                     ")";
            // A text chart draws its points as stars; a picture as dots.
            const std::string mark = o.plot == "-" ? " pt '*'" : " pt 7 ps 0.6";
            const std::string with = panel.style == ChartPanel::bars     ? "boxes"
                                     : panel.style == ChartPanel::points ? "points" + mark
                                                                         : "linespoints" + mark;
            script << (i ? ", " : "") << quoted_text(data.string()) << " index " << i << " using ("
                   << x << "):(" << y << ") with " << with
                   << (blocks.size() > 1 || panel.diagonal
                           ? " title " +
                                 quoted_text(blocks.size() > 1 ? blocks[i].name : panel.y_label)
                           : std::string(" notitle"));
        }
        // Bars stand on zero, which the axis then always shows.
        if (panel.style == ChartPanel::bars && !points_only)
            script << ", 0 with lines linecolor 'black' notitle";
        if (panel.diagonal && !points_only)
            script << ", x with lines dashtype 2 title 'random'";
        script << (points_only ? "\nunset table\n" : "\n");
    }
    if (drawn.size() > 1 && !points_only)
        script << "unset multiplot\n";
    if (!points_only)
        script << "set output\n";
    const fs::path script_file = scratch.path() / "chart.gp";
    const fs::path messages = scratch.path() / "messages";
    std::ofstream(script_file) << script.str();
    const std::string command = "gnuplot " + quoted_text(script_file.string()) + " 2>" +
                                quoted_text(messages.string()) + " </dev/null";
    if (std::system(command.c_str()) != 0) {
        std::ifstream why(messages);
        std::string text, line;
        while (std::getline(why, line))
            if (!trim(line, 0).empty())
                text = trim(line, 0);
        err << "zentable: gnuplot could not draw the chart: " << text << "\n";
        return 1;
    }
    if (points_only) {
        std::ofstream target(o.plot);
        for (std::size_t p = 0; p < drawn.size(); ++p)
            target << "# panel: " << drawn[p].panel->title << "\n"
                   << std::ifstream(points_file(p)).rdbuf() << "\n";
        if (!target) {
            err << "zentable: cannot write the chart to " << o.plot << "\n";
            return 1;
        }
        return 0;
    }
    std::ifstream picture(scratch.path() / "chart", std::ios::binary);
    if (o.plot == "-") {
        out << picture.rdbuf();
        return 0;
    }
    std::ofstream target(o.plot, std::ios::binary);
    if (!target || !(target << picture.rdbuf())) {
        err << "zentable: cannot write the chart to " << o.plot << "\n";
        return 1;
    }
    return 0;
}

}  // namespace zentable::cli
