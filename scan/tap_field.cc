#include "scan/tap_field.h"

#include <algorithm>
#include <limits>
#include <new>

#include "io/system.h"

namespace tapforge {

void CTapField::initTapField(std::int64_t length) {
  assert(length >= 1);
  lLength_ = length;
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

void CTapField::setTapDataChar(std::int64_t index, unsigned digit) {
  assert(index >= 0 && index < lNumChars() && digit < 16);
  unsigned char& byte = pData_.get()[index / 2];
  byte = static_cast<unsigned char>(index % 2 != 0 ? (byte & 0x0fU) | (digit << 4)
                                                   : (byte & 0xf0U) | digit);
}

void CTapField::reverse(std::int64_t from, std::int64_t to) {
  while (from < --to) {
    const unsigned low = getTapDataChar(from);
    setTapDataChar(from++, getTapDataChar(to));
    setTapDataChar(to, low);
  }
}

void CTapField::rotate(std::int64_t start) {
  if (start % lNumChars() == 0) return;
  // By three reversals: no second storage is needed, however long it is.
  reverse(0, start);
  reverse(start, lNumChars());
  reverse(0, lNumChars());
}

}  // namespace tapforge
