#include "common_stowraapi/platform/notify/delivery_scope.h"

namespace ovrant {
namespace {

thread_local int thread_depth = 0;

}  // namespace

DeliveryScope::DeliveryScope() : depth_(thread_depth) { ++depth_; }
DeliveryScope::~DeliveryScope() { --depth_; }
bool DeliveryScope::IsInside() { return thread_depth > 0; }

}  // namespace ovrant
