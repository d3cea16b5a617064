#include "kestrix/host/data_models/data_points.h"

#include <utility>

namespace kestrix {
namespace {

thread_local const DataPoints* in_force = nullptr;

}  // namespace

DataPointsScope::DataPointsScope(const DataPoints& points)
    : before_(std::exchange(in_force, &points)) {}

DataPointsScope::~DataPointsScope() { in_force = before_; }

const DataPoints* DataPointsScope::current() { return in_force; }

}  // namespace kestrix
