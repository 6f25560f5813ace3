#include "optimisation/mcf_simplex.hpp"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace zentable {

namespace {

constexpr double kInfinity = DBL_MAX;

}  // namespace

void MCFSimplex::LoadNet(int n, const std::vector<std::pair<int, double>>& deficits,
                         const std::vector<int>& tail, const std::vector<int>& head,
                         const std::vector<double>& lower, const std::vector<double>& upper,
                         const std::vector<double>& cost) {
    const int m = static_cast<int>(tail.size());
    std::vector<double> deficit(n, 0.0);
    double total = 0.0;
    for (const auto& named : deficits) {
        if (named.first < 1 || named.first > n)
            throw MCFException("Invalid node name");
        deficit[named.first - 1] += named.second;
        total += named.second;
    }
    double scale = 1.0;
    for (const auto& named : deficits)
        scale += std::fabs(named.second);
    // Supplies typed in decimals rarely sum to an exact binary 0: the
    // tolerance follows their size.
    if (std::fabs(total) > eps_flow_ * scale)
        throw MCFException(
            "Flows provided from nodeNetSupplies are not balanced with nonzero net flow");

    std::vector<double> balance = deficit;
    arcs_.assign(n + m, ArcRecord{0, 0, 0.0, 0.0, kBasic, kInfinity});
    lower_.assign(m, 0.0);
    upper_ = upper;
    for (int j = 0; j < m; ++j) {
        if (tail[j] < 1 || tail[j] > n)
            throw MCFException("Invalid from node");
        if (head[j] < 1 || head[j] > n)
            throw MCFException("Invalid to node");
        if (tail[j] == head[j])
            throw MCFException("Self-loops not permitted");
        const double low = lower.empty() ? 0.0 : lower[j];
        if (low > upper[j])
            throw MCFException("lower bound > upper bound");
        lower_[j] = low;
        ArcRecord& a = arcs_[n + j];
        a.tail = tail[j] - 1;
        a.head = head[j] - 1;
        a.cost = cost[j];
        a.state = kAtLower;
        a.upper = upper[j] >= kUnlimited ? kInfinity : upper[j] - low;
        // The lower bound is shipped before the solve starts: the tail has
        // sent it, the head has received it.
        balance[a.tail] += low;
        balance[a.head] -= low;
    }
    nmax_ = n_ = n;
    mmax_ = m_ = m;
    deficit_ = deficit;
    nodes_.assign(n + 1, NodeRecord{0, 0, -1, 0.0, 0.0, 0});
    for (int i = 0; i < n; ++i)
        nodes_[i].balance = balance[i];
    qcost_.clear();
    SizeCandidateList();
    status_ = kUnSolved;
    solved_once_ = false;
}

void MCFSimplex::SizeCandidateList() {
    if (m_ < 10000) {
        num_candidate_list_ = 30;
        hot_list_size_ = 5;
    } else if (m_ > 100000) {
        num_candidate_list_ = 200;
        hot_list_size_ = 20;
    } else {
        num_candidate_list_ = 50;
        hot_list_size_ = 10;
    }
    if (user_candidate_list_ > 0)
        num_candidate_list_ = user_candidate_list_;
    if (user_hot_list_ > 0)
        hot_list_size_ = user_hot_list_;
    num_group_ = (m_ - 1) / num_candidate_list_ + 1;
    group_pos_ = 0;
    temp_candidate_list_size_ = 0;
    candidates_.clear();
    candidates_.reserve(static_cast<std::size_t>(hot_list_size_ + num_candidate_list_) * 2);
}

void MCFSimplex::SetPar(int parameter, int value) {
    switch (parameter) {
        case kAlgPrimal:
            primal_ = value != 0;
            return;
        case kAlgPricing:
            if (value < 0 || value > 2)
                throw MCFException("Error in netflow_solver: unknown parameter");
            pricing_rule_ = value;
            return;
        case kNumCandList:
            user_candidate_list_ = value;
            SizeCandidateList();
            return;
        case kHotListSize:
            user_hot_list_ = value;
            SizeCandidateList();
            return;
        default:
            MCFClass::SetPar(parameter, value);
    }
}

void MCFSimplex::SetPar(int parameter, double value) {
    if (parameter >= kAlgPrimal && parameter <= kHotListSize)
        SetPar(parameter, static_cast<int>(value));
    else
        MCFClass::SetPar(parameter, value);
}

// The basis may hold the arc, so the next solve starts from a fresh tree.
void MCFSimplex::CloseArc(int arc) {
    arcs_[n_ + arc].state = kClosed;
    arcs_[n_ + arc].flow = 0.0;
    solved_once_ = false;
}

void MCFSimplex::OpenArc(int arc) {
    ArcRecord& a = arcs_[n_ + arc];
    if (a.state == kClosed)
        a.state = kAtLower;
    solved_once_ = false;
}

// Every node hangs from the root by its dummy arc, which carries the node's
// balance; the dummy arcs' big cost drives them out of the basis.
void MCFSimplex::StartTree() {
    const int root = n_;
    NodeRecord& r = nodes_[root];
    r.potential = kBigCost;
    r.depth = 0;
    r.enter = -1;
    r.prev = n_ == 0 ? root : n_ - 1;
    r.next = n_ == 0 ? root : 0;
    for (int i = 0; i < n_; ++i) {
        NodeRecord& node = nodes_[i];
        ArcRecord& dummy = arcs_[i];
        dummy.cost = kBigCost;
        dummy.upper = kInfinity;
        dummy.state = kBasic;
        if (node.balance > 0.0) {
            dummy.tail = root;
            dummy.head = i;
            dummy.flow = node.balance;
            node.potential = 2.0 * kBigCost;
        } else {
            dummy.tail = i;
            dummy.head = root;
            dummy.flow = -node.balance;
            node.potential = 0.0;
        }
        node.enter = i;
        node.depth = 1;
        node.prev = i == 0 ? root : i - 1;
        node.next = i == n_ - 1 ? root : i + 1;
    }
    for (int j = n_; j < n_ + m_; ++j) {
        ArcRecord& a = arcs_[j];
        a.flow = 0.0;
        if (a.state != kClosed)
            a.state = kAtLower;
    }
    candidates_.clear();
    temp_candidate_list_size_ = 0;
    group_pos_ = 0;
    last_pos_ = 0;
    iterations_ = 0.0;
}

void MCFSimplex::SolveMCF() {
    if (!qcost_.empty())
        throw MCFException("MCFSimplex: quadratic arc costs need a quadratic solver");
    if (!primal_)
        throw MCFException("MCFSimplex: the dual simplex is not built");
    if (!(reoptimise_ && solved_once_))
        StartTree();
    StartTimer();
    status_ = kUnSolved;
    while (status_ == kUnSolved) {
        iterations_ += 1.0;
        const int entering = pricing_rule_ == 0   ? PriceDantzig()
                             : pricing_rule_ == 1 ? PriceFirstEligible()
                                                  : PriceCandidateList();
        if (entering < 0) {
            status_ = kOK;
            for (int i = 0; i < n_; ++i)
                if (arcs_[i].flow > eps_flow_)
                    status_ = kUnfeasible;
            break;
        }
        Pivot(entering);
        if (pricing_rule_ != 2 && m_ > 0)
            last_pos_ = (last_pos_ + 1) % m_;
        if (status_ == kUnSolved && LimitsPassed(iterations_))
            status_ = kStopped;
    }
    solved_once_ = true;
}

int MCFSimplex::PriceDantzig() {
    int best = -1;
    double largest = 0.0;
    for (int k = 0; k < m_; ++k) {
        const int j = n_ + (last_pos_ + k) % m_;
        const double rc = ReducedCost(arcs_[j]);
        if (Eligible(arcs_[j], rc) && std::fabs(rc) > largest) {
            largest = std::fabs(rc);
            best = j;
        }
    }
    return best;
}

int MCFSimplex::PriceFirstEligible() {
    for (int k = 0; k < m_; ++k) {
        const int j = n_ + (last_pos_ + k) % m_;
        if (Eligible(arcs_[j], ReducedCost(arcs_[j])))
            return j;
    }
    return -1;
}

int MCFSimplex::PriceCandidateList() {
    // The best few of the last pass are often still good: keep them first.
    const int keep = std::min(hot_list_size_, temp_candidate_list_size_);
    int size = 0;
    for (int k = 0; k < keep; ++k) {
        const int j = candidates_[k].arc;
        const double rc = ReducedCost(arcs_[j]);
        if (Eligible(arcs_[j], rc))
            candidates_[size++] = Candidate{j, std::fabs(rc), 0};
    }
    candidates_.resize(size);
    int scanned = 0;
    do {
        for (int k = group_pos_; k < m_; k += num_group_) {
            const int j = n_ + k;
            const double rc = ReducedCost(arcs_[j]);
            if (Eligible(arcs_[j], rc))
                candidates_.push_back(Candidate{j, std::fabs(rc), 0});
        }
        group_pos_ = group_pos_ + 1 == num_group_ ? 0 : group_pos_ + 1;
        ++scanned;
    } while (static_cast<int>(candidates_.size()) < hot_list_size_ && scanned < num_group_);
    temp_candidate_list_size_ = static_cast<int>(candidates_.size());
    if (temp_candidate_list_size_ == 0)
        return -1;
    // Only the head of the list is used, so only the head is sorted; the
    // order of entry breaks ties as a stable sort of the whole list would.
    for (int k = 0; k < temp_candidate_list_size_; ++k)
        candidates_[k].order = k;
    const int head = std::min(hot_list_size_, temp_candidate_list_size_);
    std::partial_sort(candidates_.begin(), candidates_.begin() + std::max(head, 1),
                      candidates_.end(), [](const Candidate& a, const Candidate& b) {
                          return a.abs_rc > b.abs_rc || (a.abs_rc == b.abs_rc && a.order < b.order);
                      });
    return candidates_[0].arc;
}

// The cycle is oriented along the entering arc when it rises from its lower
// bound, against it when it falls from its upper bound. Walking up from the
// end where the cycle leaves the arc (`to`), ties take over; from the other
// end (`from`) only a strictly smaller step does. The leaving arc is then the
// last blocking arc met from the apex, which keeps the tree strongly
// feasible and the method from cycling.
void MCFSimplex::Pivot(int entering) {
    ArcRecord& a = arcs_[entering];
    const bool rising = a.state == kAtLower;
    const int from = rising ? a.tail : a.head;
    const int to = rising ? a.head : a.tail;
    double t = rising ? a.upper - a.flow : a.flow;
    int leaving = entering;
    int cut = -1;
    bool leaving_on_from = false;

    int x = from;
    int y = to;
    while (x != y) {
        if (nodes_[x].depth >= nodes_[y].depth) {
            const int e = nodes_[x].enter;
            const ArcRecord& arc = arcs_[e];
            const double step = arc.head == x ? arc.upper - arc.flow : arc.flow;
            if (step < t) {
                t = step;
                leaving = e;
                cut = x;
                leaving_on_from = true;
            }
            x = Parent(x);
        } else {
            const int e = nodes_[y].enter;
            const ArcRecord& arc = arcs_[e];
            const double step = arc.tail == y ? arc.upper - arc.flow : arc.flow;
            if (step <= t) {
                t = step;
                leaving = e;
                cut = y;
                leaving_on_from = false;
            }
            y = Parent(y);
        }
    }
    const int apex = x;
    if (t >= kInfinity) {
        status_ = kUnbounded;
        return;
    }

    if (std::fabs(t) > eps_flow_) {
        a.flow += rising ? t : -t;
        for (int v = from; v != apex; v = Parent(v)) {
            ArcRecord& arc = arcs_[nodes_[v].enter];
            arc.flow += arc.head == v ? t : -t;
        }
        for (int v = to; v != apex; v = Parent(v)) {
            ArcRecord& arc = arcs_[nodes_[v].enter];
            arc.flow += arc.tail == v ? t : -t;
        }
    }

    if (leaving == entering) {
        a.state = rising ? kAtUpper : kAtLower;
        return;
    }
    ArcRecord& out = arcs_[leaving];
    const bool with_cycle = leaving_on_from ? out.head == cut : out.tail == cut;
    out.state = with_cycle ? kAtUpper : kAtLower;
    a.state = kBasic;

    const int moved_end = leaving_on_from ? from : to;
    const int other_end = leaving_on_from ? to : from;
    Rehang(entering, moved_end, other_end, cut);
}

// Cuts the subtree rooted at `cut` and hangs it from `other_end` by the
// entering arc, `moved_end` becoming its root: the path from `moved_end` up
// to `cut` turns round. The subtree's new preorder is the old subtree of
// `moved_end`, then each node of the path with what remains of its old
// subtree, so the thread is rebuilt in one pass over the moved nodes, as are
// their depths and potentials.
//
// Each moved potential is set from its parent's so that its tree arc prices
// at zero. That is the entering arc's reduced cost added to the whole
// subtree, but without the rounding of earlier pivots: potentials start near
// 1e10 and 2e10, and added shifts would carry errors of 1e-6 down to the
// small potentials that nodes end with, enough to spoil the checks of
// complementary slackness on decimal costs.
void MCFSimplex::Rehang(int entering, int moved_end, int other_end, int cut) {
    subtree_.clear();
    const int cut_depth = nodes_[cut].depth;
    subtree_.push_back(cut);
    for (int v = nodes_[cut].next; nodes_[v].depth > cut_depth; v = nodes_[v].next)
        subtree_.push_back(v);
    if (position_.size() < nodes_.size())
        position_.resize(nodes_.size());
    for (std::size_t k = 0; k < subtree_.size(); ++k)
        position_[subtree_[k]] = static_cast<int>(k);

    path_.clear();
    for (int v = moved_end; v != cut; v = Parent(v))
        path_.push_back(v);
    path_.push_back(cut);

    const int size = static_cast<int>(subtree_.size());
    reordered_.clear();
    int begin = position_[moved_end];
    int end = begin + 1;
    while (end < size && nodes_[subtree_[end]].depth > nodes_[moved_end].depth)
        ++end;
    reordered_.insert(reordered_.end(), subtree_.begin() + begin, subtree_.begin() + end);
    for (std::size_t k = 1; k < path_.size(); ++k) {
        const int v = path_[k];
        const int v_begin = position_[v];
        int v_end = end;
        while (v_end < size && nodes_[subtree_[v_end]].depth > nodes_[v].depth)
            ++v_end;
        reordered_.insert(reordered_.end(), subtree_.begin() + v_begin, subtree_.begin() + begin);
        reordered_.insert(reordered_.end(), subtree_.begin() + end, subtree_.begin() + v_end);
        begin = v_begin;
        end = v_end;
    }

    const int before = nodes_[cut].prev;
    const int after = nodes_[subtree_.back()].next;
    nodes_[before].next = after;
    nodes_[after].prev = before;
    const int follow = nodes_[other_end].next;
    int last = other_end;
    for (int v : reordered_) {
        nodes_[last].next = v;
        nodes_[v].prev = last;
        last = v;
    }
    nodes_[last].next = follow;
    nodes_[follow].prev = last;

    for (std::size_t k = path_.size() - 1; k > 0; --k)
        nodes_[path_[k]].enter = nodes_[path_[k - 1]].enter;
    nodes_[moved_end].enter = entering;

    for (int v : reordered_) {
        const ArcRecord& up = arcs_[nodes_[v].enter];
        const NodeRecord& parent = nodes_[up.tail == v ? up.head : up.tail];
        nodes_[v].depth = parent.depth + 1;
        nodes_[v].potential =
            up.tail == v ? parent.potential - up.cost : parent.potential + up.cost;
    }
}

std::vector<double> MCFSimplex::MCFGetX() const {
    std::vector<double> flows(m_);
    for (int j = 0; j < m_; ++j)
        flows[j] = arcs_[n_ + j].flow + lower_[j];
    return flows;
}

void MCFSimplex::MCFGetX(std::vector<double>& flows, std::vector<int>& arcs) const {
    flows.clear();
    arcs.clear();
    for (int j = 0; j < m_; ++j) {
        const double x = arcs_[n_ + j].flow + lower_[j];
        if (std::fabs(x) > eps_flow_) {
            flows.push_back(x);
            arcs.push_back(j);
        }
    }
}

std::vector<double> MCFSimplex::MCFGetRC() const {
    std::vector<double> rc(m_);
    for (int j = 0; j < m_; ++j)
        rc[j] = ReducedCost(arcs_[n_ + j]);
    return rc;
}

std::vector<double> MCFSimplex::MCFGetPi() const {
    std::vector<double> pi(n_);
    for (int i = 0; i < n_; ++i)
        pi[i] = nodes_[i].potential;
    return pi;
}

double MCFSimplex::MCFGetFO() const {
    double total = 0.0;
    for (int j = 0; j < m_; ++j)
        total += arcs_[n_ + j].cost * (arcs_[n_ + j].flow + lower_[j]);
    return total;
}

}  // namespace zentable
