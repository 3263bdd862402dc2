#include "scan/tap_field.h"

#include <algorithm>
#include <limits>
#include <new>

#include "io/system.h"

namespace tapforge {

void CTapField::initTapField(std::int64_t length) {
  assert(length >= 1);
  lLength_ = length;
  lStartChar_ = 0;
  const std::int64_t bytes = bytesOf(length);
  if (bytes <= capacity_) {
    std::memset(pData_.get(), 0, static_cast<std::size_t>(bytes + kPadding));
    return;
  }
  // Old storage goes first, so that both never exist together. calloc gives
  // large storage as untouched zero pages, so a field costs what is written.
  pData_.reset();
  capacity_ = 0;
  const std::int64_t wanted = std::max(bytes, kSmall);
  constexpr auto kMost = static_cast<std::uint64_t>(std::numeric_limits<std::ptrdiff_t>::max());
  if (static_cast<std::uint64_t>(wanted) > kMost - kPadding) throw std::bad_alloc();
  const auto size = static_cast<std::size_t>(wanted + kPadding);
  pData_.reset(static_cast<unsigned char*>(std::calloc(size, 1)));
  if (pData_ == nullptr) throw std::bad_alloc();
  capacity_ = wanted;
  preferLargePages(pData_.get(), size);
}

unsigned CTapField::physicalDigit(std::int64_t index) const {
  assert(index >= 0 && index < lNumChars());
  const unsigned byte = pData_.get()[index / 2];
  return index % 2 != 0 ? byte >> 4 : byte & 15U;
}

void CTapField::putDigit(std::int64_t index, unsigned value) {
  assert(index >= 0 && index < lNumChars() && value < 16);
  unsigned char& byte = pData_.get()[index / 2];
  byte = static_cast<unsigned char>(index % 2 != 0 ? (byte & 0x0fU) | (value << 4)
                                                   : (byte & 0xf0U) | value);
}

void CTapField::setTapDataChar(std::int64_t index, unsigned value) {
  putDigit(index, value);
  lStartChar_ = index;
}

void CTapField::reverse(std::int64_t from, std::int64_t to) {
  while (from < --to) {
    const unsigned low = physicalDigit(from);
    putDigit(from, physicalDigit(to));
    putDigit(to, low);
    ++from;
  }
}

void CTapField::normalise() {
  if (lStartChar_ == 0) return;
  // Turned by three reversals: no second row is needed, however long it is.
  reverse(0, lStartChar_);
  reverse(lStartChar_, lNumChars());
  reverse(0, lNumChars());
  lStartChar_ = 0;
}

}  // namespace tapforge
