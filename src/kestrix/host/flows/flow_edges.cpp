#include "kestrix/host/flows/flow_edges.h"

namespace kestrix {
namespace {

thread_local const FlowEdgesScope::Edges* edges_in_force = nullptr;

}  // namespace

FlowEdgesScope::FlowEdgesScope(const Edges& edges) : before_(edges_in_force) {
  edges_in_force = &edges;
}

FlowEdgesScope::~FlowEdgesScope() { edges_in_force = before_; }

const FlowEdgesScope::Edges* FlowEdgesScope::current() { return edges_in_force; }

}  // namespace kestrix
