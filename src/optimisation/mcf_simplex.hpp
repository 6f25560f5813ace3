#pragma once

#include <vector>

#include "optimisation/mcf_class.hpp"

namespace zentable {

// The primal network simplex over a spanning tree kept as a thread (a
// preorder walk) with depths, so that finding a cycle and updating
// potentials cost the size of the cycle and of the moved subtree.
class MCFSimplex : public MCFClass {
  public:
    enum SimplexParameter {
        kAlgPrimal = kLastParam,  // 1 primal, 0 dual
        kAlgPricing,              // 0 Dantzig, 1 first eligible, 2 candidate list
        kNumCandList,
        kHotListSize
    };
    static constexpr double kBigCost = 1e10;

    void LoadNet(int n, const std::vector<std::pair<int, double>>& deficits,
                 const std::vector<int>& tail, const std::vector<int>& head,
                 const std::vector<double>& lower, const std::vector<double>& upper,
                 const std::vector<double>& cost) override;
    using MCFClass::SetPar;
    void SetPar(int parameter, int value) override;
    void SetPar(int parameter, double value) override;
    void SolveMCF() override;

    std::vector<double> MCFGetX() const override;
    void MCFGetX(std::vector<double>& flows, std::vector<int>& arcs) const override;
    std::vector<double> MCFGetRC() const override;
    std::vector<double> MCFGetPi() const override;
    double MCFGetFO() const override;
    double MCFUCap(int arc) const override { return upper_[arc]; }
    double MCFLCap(int arc) const override { return lower_[arc]; }
    double MCFCost(int arc) const override { return arcs_[n_ + arc].cost; }
    double MCFDfct(int node) const override { return deficit_[node - 1]; }
    int MCFSNde(int arc) const override { return arcs_[n_ + arc].tail + 1; }
    int MCFENde(int arc) const override { return arcs_[n_ + arc].head + 1; }
    bool IsClosedArc(int arc) const override { return arcs_[n_ + arc].state > kAtUpper; }

    // A closed arc carries no flow and is never priced.
    void CloseArc(int arc);
    void OpenArc(int arc);

    double Iterations() const { return iterations_; }
    int NumCandidateList() const { return num_candidate_list_; }
    int HotListSize() const { return hot_list_size_; }

  private:
    static constexpr unsigned char kBasic = 0;
    static constexpr unsigned char kAtLower = 1;
    static constexpr unsigned char kAtUpper = 2;
    static constexpr unsigned char kClosed = 3;

    struct NodeRecord {
        int prev;   // thread predecessor
        int next;   // thread successor
        int enter;  // arc to the parent
        double balance;
        double potential;
        int depth;
    };
    struct ArcRecord {
        int tail;
        int head;
        double flow;
        double cost;
        unsigned char state;
        double upper;
    };
    struct Candidate {
        int arc;
        double abs_rc;
        int order;
    };

    void SizeCandidateList();
    void StartTree();
    double ReducedCost(const ArcRecord& a) const {
        return nodes_[a.tail].potential - nodes_[a.head].potential + a.cost;
    }
    bool Eligible(const ArcRecord& a, double rc) const {
        return (a.state == kAtLower && rc < -eps_cost_) || (a.state == kAtUpper && rc > eps_cost_);
    }
    int Parent(int node) const {
        const ArcRecord& a = arcs_[nodes_[node].enter];
        return a.tail == node ? a.head : a.tail;
    }
    int PriceDantzig();
    int PriceFirstEligible();
    int PriceCandidateList();
    void Pivot(int entering);
    void Rehang(int entering, int moved_end, int other_end, int cut);

    bool primal_ = true;
    int pricing_rule_ = 2;
    int user_candidate_list_ = 0;
    int user_hot_list_ = 0;
    int num_candidate_list_ = 0;
    int hot_list_size_ = 0;
    int num_group_ = 1;
    int group_pos_ = 0;
    int temp_candidate_list_size_ = 0;
    int last_pos_ = 0;  // rules 0 and 1
    double iterations_ = 0.0;
    bool solved_once_ = false;

    std::vector<NodeRecord> nodes_;  // n real nodes, then the root
    std::vector<ArcRecord> arcs_;    // n dummy arcs, then the real arcs
    std::vector<double> lower_;
    std::vector<double> upper_;
    std::vector<double> deficit_;
    std::vector<Candidate> candidates_;

    // Scratch of a pivot, kept to spare allocations.
    std::vector<int> subtree_;
    std::vector<int> reordered_;
    std::vector<int> path_;
    std::vector<int> position_;
};

}  // namespace zentable
