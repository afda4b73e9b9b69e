// The iteration order of the signed maps, by a red-black tree written out by hand.
//
// The maps order their keys by *equality*, so nothing sorts the literals: where one ends up is a matter of the
// descent (left past an equal key, right past the other) and of the rotations that keep the tree balanced.
// This tree makes both of them visible. F1 T2 F3 iterates F3 F1 T2.
#pragma once

#include <cstddef>
#include <vector>

/// A tree of signed payloads. Nodes are numbered from 1 in the order of insertion; 0 is no node.
class SignedTree {
public:
    SignedTree() : nodes_(1) { nodes_[0].red = false; }

    void insert(bool sign, int payload)
    {
        std::size_t parent = 0;
        for (std::size_t at = root_; at != 0;) {
            parent = at;
            at = sign == nodes_[at].sign ? nodes_[at].left : nodes_[at].right;
        }
        nodes_.push_back({sign, payload, true, parent, 0, 0});
        const std::size_t added = nodes_.size() - 1;
        if (parent == 0) {
            root_ = added;
        } else if (sign == nodes_[parent].sign) {
            nodes_[parent].left = added;
        } else {
            nodes_[parent].right = added;
        }
        rebalance(added);
    }

    /// The payloads from the leftmost node to the rightmost.
    std::vector<int> inOrder() const
    {
        std::vector<int> payloads;
        walk(root_, payloads);
        return payloads;
    }

private:
    struct Node {
        bool sign = false;
        int payload = 0;
        bool red = true;
        std::size_t parent = 0;
        std::size_t left = 0;
        std::size_t right = 0;
    };

    void rebalance(std::size_t at)
    {
        while (at != root_ && nodes_[nodes_[at].parent].red) {
            std::size_t parent = nodes_[at].parent;
            const std::size_t grandparent = nodes_[parent].parent;
            const bool onLeft = parent == nodes_[grandparent].left;
            const std::size_t uncle = onLeft ? nodes_[grandparent].right : nodes_[grandparent].left;
            if (uncle != 0 && nodes_[uncle].red) {
                nodes_[parent].red = false;
                nodes_[uncle].red = false;
                nodes_[grandparent].red = true;
                at = grandparent;
                continue;
            }
            if (onLeft ? at == nodes_[parent].right : at == nodes_[parent].left) {
                at = parent;
                rotate(at, onLeft);
                parent = nodes_[at].parent;
            }
            nodes_[parent].red = false;
            nodes_[grandparent].red = true;
            rotate(grandparent, !onLeft);
        }
        nodes_[root_].red = false;
    }

    // Moves `at` down, to the left or to the right; its other child takes its place.
    void rotate(std::size_t at, bool toLeft)
    {
        const std::size_t up = toLeft ? nodes_[at].right : nodes_[at].left;
        const std::size_t inner = toLeft ? nodes_[up].left : nodes_[up].right;
        (toLeft ? nodes_[at].right : nodes_[at].left) = inner;
        if (inner != 0) {
            nodes_[inner].parent = at;
        }
        const std::size_t above = nodes_[at].parent;
        nodes_[up].parent = above;
        if (above == 0) {
            root_ = up;
        } else if (nodes_[above].left == at) {
            nodes_[above].left = up;
        } else {
            nodes_[above].right = up;
        }
        (toLeft ? nodes_[up].left : nodes_[up].right) = at;
        nodes_[at].parent = up;
    }

    void walk(std::size_t at, std::vector<int>& payloads) const
    {
        if (at == 0) {
            return;
        }
        walk(nodes_[at].left, payloads);
        payloads.push_back(nodes_[at].payload);
        walk(nodes_[at].right, payloads);
    }

    std::vector<Node> nodes_;
    std::size_t root_ = 0;
};
