#include "optimisation/mcf_class.hpp"

#include <cstdlib>
#include <istream>
#include <ostream>
#include <sstream>

namespace zentable {

namespace {

const char* const kUnknownParameter = "Error in netflow_solver: unknown parameter";

// The shortest text that reads back as the same double, so that a network
// written and read again is the same network.
std::string exact_text(double value) {
    std::ostringstream out;
    out.precision(15);
    out << value;
    if (std::strtod(out.str().c_str(), nullptr) != value) {
        out.str("");
        out.precision(17);
        out << value;
    }
    return out.str();
}

template <class T>
bool read_field(std::istream& line, T& value) {
    return static_cast<bool>(line >> value);
}

[[noreturn]] void dmx_failure(const char* what) {
    throw MCFClass::MCFException(std::string("LoadDMX: ") + what);
}

// The next line that is neither blank nor a comment; false at the end.
bool next_record(std::istream& in, std::string& line) {
    while (std::getline(in, line)) {
        const std::size_t first = line.find_first_not_of(" \t\r");
        if (first != std::string::npos && line[first] != 'c')
            return true;
    }
    return false;
}

}  // namespace

void MCFClass::SetPar(int parameter, int value) {
    switch (parameter) {
        case kMaxIter:
            max_iter_ = value;
            return;
        case kReopt:
            reoptimise_ = value != 0;
            return;
        default:
            SetPar(parameter, static_cast<double>(value));
    }
}

void MCFClass::SetPar(int parameter, double value) {
    switch (parameter) {
        case kMaxTime:
            max_time_ = value;
            return;
        case kMaxIter:
            max_iter_ = static_cast<int>(value);
            return;
        case kEpsFlw:
            eps_flow_ = value;
            return;
        case kEpsDfct:
            eps_deficit_ = value;
            return;
        case kEpsCst:
            eps_cost_ = value;
            return;
        case kReopt:
            reoptimise_ = value != 0.0;
            return;
        default:
            throw MCFException(kUnknownParameter);
    }
}

double MCFClass::TimeSpent() const {
    if (!timer_on_)
        return 0.0;
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - started_).count();
}

void MCFClass::StartTimer() {
    if (timer_on_)
        started_ = std::chrono::steady_clock::now();
}

bool MCFClass::LimitsPassed(double iterations) const {
    if (max_time_ > 0.0 && timer_on_ && TimeSpent() > max_time_)
        return true;
    return max_iter_ > 0 && iterations > max_iter_;
}

void MCFClass::LoadDMX(std::istream& in) {
    std::string line;
    if (!next_record(in, line))
        dmx_failure("error reading the input stream");
    std::istringstream problem(line);
    std::string code;
    std::string kind;
    problem >> code >> kind;
    if (code != "p" || kind != "min")
        dmx_failure("format error in the input stream");
    long n = 0;
    long m = 0;
    if (!read_field(problem, n) || n < 0)
        dmx_failure("error reading number of nodes");
    if (!read_field(problem, m) || m < 0)
        dmx_failure("error reading number of arcs");

    std::vector<std::pair<int, double>> deficits;
    std::vector<int> tail;
    std::vector<int> head;
    std::vector<double> lower;
    std::vector<double> upper;
    std::vector<double> cost;
    std::vector<double> quadratic;
    bool any_quadratic = false;
    while (next_record(in, line)) {
        std::istringstream record(line);
        record >> code;
        if (code == "n") {
            long node = 0;
            double supply = 0.0;
            if (!read_field(record, node))
                dmx_failure("error reading node name");
            if (node < 1 || node > n)
                dmx_failure("invalid node name");
            if (!read_field(record, supply))
                dmx_failure("error reading deficit");
            // The text gives the supply; the class keeps the deficit.
            deficits.emplace_back(static_cast<int>(node), -supply);
        } else if (code == "a") {
            if (static_cast<long>(tail.size()) == m)
                dmx_failure("too many arc descriptors");
            long from = 0;
            long to = 0;
            double low = 0.0;
            double up = 0.0;
            double c = 0.0;
            double q = 0.0;
            if (!read_field(record, from))
                dmx_failure("error reading start node");
            if (from < 1 || from > n)
                dmx_failure("invalid start node");
            if (!read_field(record, to))
                dmx_failure("error reading end node");
            if (to < 1 || to > n)
                dmx_failure("invalid end node");
            if (from == to)
                dmx_failure("self-loops not permitted");
            if (!read_field(record, low))
                dmx_failure("error reading lower bound");
            if (!read_field(record, up))
                dmx_failure("error reading upper bound");
            if (!read_field(record, c))
                dmx_failure("error reading arc cost");
            if (!(record >> std::ws).eof()) {
                if (!read_field(record, q))
                    dmx_failure("error reading arc quadratic cost");
                if (q < 0.0)
                    dmx_failure("negative arc quadratic cost");
            }
            if (low > up)
                dmx_failure("lower bound > upper bound");
            tail.push_back(static_cast<int>(from));
            head.push_back(static_cast<int>(to));
            lower.push_back(low);
            upper.push_back(up);
            cost.push_back(c);
            quadratic.push_back(q);
            any_quadratic = any_quadratic || q != 0.0;
        } else {
            dmx_failure("invalid code");
        }
    }
    if (static_cast<long>(tail.size()) < m)
        dmx_failure("too few arc descriptors");
    LoadNet(static_cast<int>(n), deficits, tail, head, lower, upper, cost);
    qcost_ = any_quadratic ? quadratic : std::vector<double>();
}

void MCFClass::WriteMCF(std::ostream& out, int format) const {
    if (format == kDMX) {
        out << "p min " << n_ << ' ' << m_ << '\n';
        for (int i = 1; i <= n_; ++i)
            if (MCFDfct(i) != 0.0)
                out << "n " << i << ' ' << exact_text(-MCFDfct(i)) << '\n';
        for (int j = 0; j < m_; ++j) {
            out << "a " << MCFSNde(j) << ' ' << MCFENde(j) << ' ' << exact_text(MCFLCap(j)) << ' '
                << exact_text(MCFUCap(j)) << ' ' << exact_text(MCFCost(j));
            if (MCFQCost(j) != 0.0)
                out << ' ' << exact_text(MCFQCost(j));
            out << '\n';
        }
        return;
    }
    if (format == kMPS) {
        // One equality row per node: inflow less outflow equals the deficit.
        out << "NAME      MCF\nROWS\n N  obj\n";
        for (int i = 1; i <= n_; ++i)
            out << " E  c" << i << '\n';
        out << "COLUMNS\n";
        for (int j = 0; j < m_; ++j) {
            const std::string x = "    x" + std::to_string(j);
            out << x << "  obj  " << exact_text(MCFCost(j)) << '\n';
            out << x << "  c" << MCFSNde(j) << "  -1\n";
            out << x << "  c" << MCFENde(j) << "  1\n";
        }
        out << "RHS\n";
        for (int i = 1; i <= n_; ++i)
            if (MCFDfct(i) != 0.0)
                out << "    rhs  c" << i << "  " << exact_text(MCFDfct(i)) << '\n';
        out << "BOUNDS\n";
        for (int j = 0; j < m_; ++j) {
            const std::string x = "x" + std::to_string(j);
            if (MCFLCap(j) != 0.0)
                out << " LO BND  " << x << "  " << exact_text(MCFLCap(j)) << '\n';
            if (MCFUCap(j) >= kUnlimited)
                out << " PL BND  " << x << '\n';
            else
                out << " UP BND  " << x << "  " << exact_text(MCFUCap(j)) << '\n';
        }
        out << "ENDATA\n";
        return;
    }
    throw MCFException("Error: unknown format " + std::to_string(format));
}

}  // namespace zentable
