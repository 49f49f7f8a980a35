// CellBuffers: the storage of a result's cells, kept for the next result
// instead of being handed back to the C library.
//
// A large result's cells are one block of several megabytes. Freed, such a
// block goes back to the system, and the next result of the same size has
// every one of its pages faulted in again, which costs as much as reading
// the values. So the store that frees its cells gives the emptied vector
// here (RecycleCells), and the driver that reads the next result asks for
// one of at least the size it needs (CellStorage).
//
// One spare per thread, at most kMaxSpareBytes (32 MB, two million cells);
// the cells themselves are destroyed when given back, only the capacity
// stays, and the block given back last replaces the one kept. A spare is
// handed out only to a result that fills at least half of it, so that a
// small recordset never holds a large block. Blocks under kMinSpareBytes are
// not kept: the C library reuses those well by itself.
#pragma once

#include <cstddef>
#include <vector>

#include "kelvary/platform/Variant.h"

namespace kelvary::internal {

inline constexpr size_t kMaxSpareBytes = size_t{32} << 20;
inline constexpr size_t kMinSpareBytes = size_t{256} << 10;

// CellStorage: an empty vector with room for at least count cells, the
// thread's spare when it fits.
std::vector<Variant> CellStorage(size_t count);

// RecycleCells: destroys the cells and keeps their storage as the thread's
// spare when its size is within the limits (cells is left empty either way).
void RecycleCells(std::vector<Variant>& cells) noexcept;

// SpareCellBytes: the bytes of the thread's spare (0 when none).
size_t SpareCellBytes() noexcept;

// ReleaseSpareCells: gives the thread's spare back to the C library.
void ReleaseSpareCells() noexcept;

}  // namespace kelvary::internal
