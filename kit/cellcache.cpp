#include "cellcache.h"

#include <algorithm>

#include "gradientrenderer.h"

namespace ZIRK::kit {

namespace {

uint64_t HashOf(const Recipe& key) {
  uint64_t hash = key.size();
  for (const int32_t number : key)
    hash = (hash << 7 ^ hash >> 57 ^ static_cast<uint32_t>(number)) * 0x9E3779B97F4A7C15u;
  return hash ^ hash >> 32;
}

/// The smallest rectangle in `part` that contains all pixels with coverage.
VuRect CoveredIn(const uint8_t* coverage, int pitch, const VuRect& part) {
  int x0 = part.width, x1 = 0, y0 = part.height, y1 = 0;
  for (int y = 0; y < part.height; ++y) {
    const uint8_t* const row = coverage + ptrdiff_t{part.y + y} * pitch + part.x;
    const auto covered = [](uint8_t c) { return c != 0; };
    const auto first = static_cast<int>(std::find_if(row, row + part.width, covered) - row);
    if (first == part.width) continue;
    int last = part.width;
    while (row[last - 1] == 0) --last;
    x0 = std::min(x0, first);
    x1 = std::max(x1, last);
    y0 = std::min(y0, y);
    y1 = y + 1;
  }
  return y1 == 0 ? VuRect{0, 0, 0, 0} : VuRect{x0, y0, x1 - x0, y1 - y0};
}

bool IsFull(const uint8_t* coverage, int pitch, const VuRect& part) {
  for (int y = 0; y < part.height; ++y) {
    const uint8_t* const row = coverage + ptrdiff_t{part.y + y} * pitch + part.x;
    if (std::any_of(row, row + part.width, [](uint8_t c) { return c != 255; })) return false;
  }
  return true;
}

}  // namespace

const Cells* CellCache::Coverage(const Recipe& recipe, const Window& window) {
  inUse_ = nullptr;
  return inUse_ = Find(recipe, window, &CellCache::MakeCoverage);
}

const Cells* CellCache::Gradient(const Recipe& recipe, const Window& window) {
  return Find(recipe, window, &CellCache::MakeGradient);
}

const Cells* CellCache::Find(const Recipe& recipe, const Window& window, Make make) {
  key_ = recipe;
  key_.insert(key_.end(), {window.x, window.y});
  key_.insert(key_.end(), window.across.begin(), window.across.end());
  key_.insert(key_.end(), window.down.begin(), window.down.end());
  const uint64_t hash = HashOf(key_);
  const auto [first, last] = index_.equal_range(hash);
  for (auto found = first; found != last; ++found) {
    const Entries::iterator entry = found->second;
    if (entry->key != key_) continue;
    entries_.splice(entries_.begin(), entries_, entry);
    return &entry->cells;
  }
  return Add(hash, recipe, window, make);
}

const Cells* CellCache::Add(uint64_t hash, const Recipe& recipe, const Window& window, Make make) {
  Entries made;
  made.push_back({key_, hash, 0, {}});
  Entry& entry = made.front();
  if (!(this->*make)(recipe, window, entry.cells)) return nullptr;
  size_t bytes = sizeof entry + key_.size() * sizeof key_[0];
  for (const Cell& cell : entry.cells)
    if (cell.bitmap) bytes += cell.bitmap->GetSize();
  entry.bytes = static_cast<uint32_t>(bytes);
  index_.emplace(hash, made.begin());
  entries_.splice(entries_.begin(), made);
  bytes_ += entry.bytes;
  for (auto oldest = std::prev(entries_.end()); bytes_ > limit_ && oldest != entries_.begin();) {
    const auto next = std::prev(oldest);
    if (&oldest->cells != inUse_) Drop(oldest);
    oldest = next;
  }
  return &entry.cells;
}

void CellCache::Drop(Entries::iterator entry) {
  const auto [first, last] = index_.equal_range(entry->hash);
  index_.erase(std::find_if(first, last, [&](const auto& e) { return e.second == entry; }));
  bytes_ -= entry->bytes;
  entries_.erase(entry);
}

void CellCache::Clear() {
  index_.clear();
  entries_.clear();
  bytes_ = 0;
}

bool CellCache::MakeCoverage(const Recipe& recipe, const Window& window, Cells& cells) {
  const int width = window.Width();
  const VuRect all{window.x, window.y, width, window.Height()};
  coverage_.resize(static_cast<size_t>(width) * static_cast<size_t>(all.height));
  const auto figure = static_cast<Figure>(recipe[0]);
  if (figure == Figure::Shadow || figure == Figure::Glow)
    softs_.Render(recipe, all, coverage_.data());
  else
    figures_.Render(recipe, all, coverage_.data());
  auto* cell = cells.data();
  int y = 0;
  for (const int height : window.down) {
    int x = 0;
    for (const int part : window.across) {
      if (!MakeCell(coverage_.data(), width, {x, y, part, height}, *cell++)) return false;
      x += part;
    }
    y += height;
  }
  return true;
}

bool CellCache::MakeCell(const uint8_t* coverage, int pitch, const VuRect& part, Cell& cell) {
  cell.place = CoveredIn(coverage, pitch, part);
  const VuRect& place = cell.place;
  const VuRect covered{part.x + place.x, part.y + place.y, place.width, place.height};
  if (place.width == 0 || IsFull(coverage, pitch, covered)) return true;
  cell.bitmap.reset(graphics_.CreateBitmap(place.width, place.height, VuPixelFormat::A8));
  return cell.bitmap && cell.bitmap->SetPixels(cell.bitmap->GetBounds(),
                                               coverage + ptrdiff_t{covered.y} * pitch + covered.x,
                                               static_cast<unsigned>(pitch));
}

bool CellCache::MakeGradient(const Recipe& recipe, const Window& window, Cells& cells) {
  const VuRect all{window.x, window.y, window.Width(), window.Height()};
  pixels_.resize(static_cast<size_t>(all.width) * static_cast<size_t>(all.height));
  RenderGradient(recipe, all, pixels_.data());
  const bool opaque =
      std::all_of(pixels_.begin(), pixels_.end(), [](uint32_t p) { return p >> 24 == 255; });
  Cell& cell = cells[0];
  cell.place = {0, 0, all.width, all.height};
  const auto create = [&](VuPixelFormat format) {
    cell.bitmap.reset(graphics_.CreateBitmap(all.width, all.height, format));
    return cell.bitmap != nullptr;
  };
  // An opaque format is drawn faster, but a backend may not support it.
  const bool tried = opaque && hasOpaqueFormat_;
  if (!(tried && create(VuPixelFormat::XRGB8888))) {
    if (!create(VuPixelFormat::ARGB8888)) return false;
    hasOpaqueFormat_ = !tried && hasOpaqueFormat_;
  }
  return cell.bitmap->SetPixels(cell.place, pixels_.data(), static_cast<unsigned>(all.width) * 4);
}

}  // namespace ZIRK::kit
