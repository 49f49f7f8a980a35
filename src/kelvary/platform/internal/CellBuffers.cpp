#include "kelvary/platform/internal/CellBuffers.h"

#include <utility>

namespace kelvary::internal {
namespace {

// Set when the thread's spare has been destroyed (a recordset destroyed
// later in the thread's exit frees its cells as usual). A plain flag, so
// that it can still be read then.
thread_local bool spare_gone = false;

struct Spare {
  std::vector<Variant> cells;
  ~Spare() { spare_gone = true; }
};

std::vector<Variant>* SpareCells() noexcept {
  if (spare_gone) return nullptr;
  thread_local Spare spare;
  return &spare.cells;
}

size_t BytesOf(size_t cells) {
  return cells * sizeof(Variant);
}

}  // namespace

std::vector<Variant> CellStorage(size_t count) {
  std::vector<Variant> cells;
  std::vector<Variant>* spare = SpareCells();
  if (spare != nullptr && spare->capacity() >= count && spare->capacity() / 2 <= count) {
    cells.swap(*spare);
  } else {
    cells.reserve(count);
  }
  return cells;
}

void RecycleCells(std::vector<Variant>& cells) noexcept {
  cells.clear();
  const size_t bytes = BytesOf(cells.capacity());
  if (bytes < kMinSpareBytes || bytes > kMaxSpareBytes) return;
  // The latest block wins: the next result is most often the same
  // statement's again. The one it replaces leaves with the caller's vector.
  if (std::vector<Variant>* spare = SpareCells()) spare->swap(cells);
}

size_t SpareCellBytes() noexcept {
  const std::vector<Variant>* spare = SpareCells();
  return spare == nullptr ? 0 : BytesOf(spare->capacity());
}

void ReleaseSpareCells() noexcept {
  if (std::vector<Variant>* spare = SpareCells()) std::vector<Variant>().swap(*spare);
}

}  // namespace kelvary::internal
