#include "kelvary/automation/internal/NativeDispatch.h"

#include <functional>
#include <mutex>
#include <unordered_map>

namespace kelvary::automation::internal {

namespace {

struct IdentityHash {
  size_t operator()(const Identity& id) const {
    return std::hash<const void*>()(id.native) ^ (std::hash<int64_t>()(id.facet) << 1);
  }
};

struct Registry {
  // Recursive: the last reference to a wrapper may go while the lock is held
  // (a weak reference locked and dropped), and its destructor forgets itself.
  std::recursive_mutex mutex;
  std::unordered_map<Identity, std::weak_ptr<DispatchObject>, IdentityHash> wrappers;
};

Registry& TheRegistry() {
  // Never destroyed: wrappers held by statics may end after main returns.
  static Registry* registry = new Registry;
  return *registry;
}

}  // namespace

std::shared_ptr<DispatchObject> WrapperFor(
    const Identity& identity, const std::function<std::shared_ptr<DispatchObject>()>& make) {
  Registry& r = TheRegistry();
  std::lock_guard<std::recursive_mutex> lock(r.mutex);
  auto it = r.wrappers.find(identity);
  if (it != r.wrappers.end()) {
    if (auto live = it->second.lock()) return live;
  }
  std::shared_ptr<DispatchObject> made = make();
  r.wrappers[identity] = made;
  return made;
}

void Forget(const Identity& identity, const DispatchObject* wrapper) {
  (void)wrapper;
  Registry& r = TheRegistry();
  std::lock_guard<std::recursive_mutex> lock(r.mutex);
  auto it = r.wrappers.find(identity);
  // A new wrapper may already stand in the entry when this one's last
  // reference went after the entry was replaced; only an expired entry is
  // this wrapper's.
  if (it != r.wrappers.end() && it->second.expired()) r.wrappers.erase(it);
}

size_t LiveWrapperCount() {
  Registry& r = TheRegistry();
  std::lock_guard<std::recursive_mutex> lock(r.mutex);
  size_t n = 0;
  for (const auto& [id, weak] : r.wrappers)
    n += weak.expired() ? 0 : 1;
  return n;
}

}  // namespace kelvary::automation::internal
