#include "common_stowraapi/platform/delivery_scope.h"

namespace ovrant {
namespace {

thread_local int depth = 0;

}  // namespace

DeliveryScope::DeliveryScope() { ++depth; }
DeliveryScope::~DeliveryScope() { --depth; }
bool DeliveryScope::IsInside() { return depth > 0; }

}  // namespace ovrant
