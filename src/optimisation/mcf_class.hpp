#pragma once

#include <chrono>
#include <exception>
#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace zentable {

// The common face of a min-cost flow solver: a network is loaded, solved and
// read back through these slots, so that a driver does not depend on the
// method. Nodes are numbered from 1 at this interface, arcs from 0.
class MCFClass {
  public:
    class MCFException : public std::exception {
      public:
        explicit MCFException(std::string message) : message_(std::move(message)) {}
        const char* what() const noexcept override { return message_.c_str(); }

      private:
        std::string message_;
    };

    enum Status { kUnSolved = -1, kOK = 0, kStopped = 1, kUnfeasible = 2, kUnbounded = 3 };
    enum Parameter {
        kMaxTime = 0,
        kMaxIter = 1,
        kEpsFlw = 2,
        kEpsDfct = 3,
        kEpsCst = 4,
        kReopt = 5,
        // Method parameters of derived classes start here.
        kLastParam = 6
    };
    enum Format { kDMX = 0, kMPS = 1 };

    // Upper bounds at or above this are unlimited: the arc takes the largest
    // double as its capacity, and a solver may report an unbounded objective
    // through a cycle of such arcs.
    static constexpr double kUnlimited = 1e30;

    MCFClass() = default;
    MCFClass(const MCFClass&) = delete;
    MCFClass& operator=(const MCFClass&) = delete;
    virtual ~MCFClass() = default;

    // Reads the DIMACS text of a network and loads it through LoadNet; the
    // quadratic costs it may carry are kept for the writer.
    virtual void LoadDMX(std::istream& in);
    // Nodes 1 to n. `deficits` names nodes with their inflow less outflow
    // (minus the net supply); a node not named has 0. `lower` may be empty
    // for bounds of 0.
    virtual void LoadNet(int n, const std::vector<std::pair<int, double>>& deficits,
                         const std::vector<int>& tail, const std::vector<int>& head,
                         const std::vector<double>& lower, const std::vector<double>& upper,
                         const std::vector<double>& cost) = 0;

    virtual void SetPar(int parameter, int value);
    virtual void SetPar(int parameter, double value);
    void SetMCFTime(bool on = true) { timer_on_ = on; }

    virtual void SolveMCF() = 0;

    // All flows, lower bounds added back.
    virtual std::vector<double> MCFGetX() const = 0;
    // The flows beyond the flow tolerance, with their arc numbers.
    virtual void MCFGetX(std::vector<double>& flows, std::vector<int>& arcs) const = 0;
    virtual std::vector<double> MCFGetRC() const = 0;
    virtual std::vector<double> MCFGetPi() const = 0;
    virtual double MCFGetFO() const = 0;
    virtual double MCFUCap(int arc) const = 0;  // as loaded; unlimited is the largest double
    virtual double MCFLCap(int arc) const = 0;
    virtual double MCFCost(int arc) const = 0;
    double MCFQCost(int arc) const { return qcost_.empty() ? 0.0 : qcost_[arc]; }
    virtual double MCFDfct(int node) const = 0;  // as loaded, before the lower bounds' shift
    virtual int MCFSNde(int arc) const = 0;
    virtual int MCFENde(int arc) const = 0;
    virtual bool IsClosedArc(int arc) const = 0;

    virtual void WriteMCF(std::ostream& out, int format = kDMX) const;

    int MCFnmax() const { return nmax_; }
    int MCFmmax() const { return mmax_; }
    int MCFn() const { return n_; }
    int MCFm() const { return m_; }
    int MCFGetStatus() const { return status_; }
    double EpsFlow() const { return eps_flow_; }
    double EpsCost() const { return eps_cost_; }
    double EpsDeficit() const { return eps_deficit_; }
    double TimeSpent() const;

  protected:
    void StartTimer();
    bool LimitsPassed(double iterations) const;

    int nmax_ = 0;
    int mmax_ = 0;
    int n_ = 0;
    int m_ = 0;
    int status_ = kUnSolved;
    double eps_flow_ = 2.220446049250313e-14;
    double eps_cost_ = 2.220446049250313e-14;
    double eps_deficit_ = 2.220446049250313e-12;
    double max_time_ = 0.0;  // seconds; 0 is no limit
    int max_iter_ = 0;       // 0 is no limit
    bool reoptimise_ = false;
    bool timer_on_ = false;
    std::chrono::steady_clock::time_point started_;
    std::vector<double> qcost_;  // empty when every arc's cost is linear
};

}  // namespace zentable
