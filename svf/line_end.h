#ifndef TAPFORGE_SVF_LINE_END_H
#define TAPFORGE_SVF_LINE_END_H

namespace tapforge {

/// The first line feed or carriage return in [begin, limit), or `limit`. Up to
/// 15 bytes behind `limit` may be read.
const unsigned char* findLineEnd(const unsigned char* begin, const unsigned char* limit);

/// The plain twin that the fast one is checked against.
const unsigned char* findLineEndPlain(const unsigned char* begin, const unsigned char* limit);

/// The number of line feeds in [begin, end), and its plain twin.
long countLineFeeds(const unsigned char* begin, const unsigned char* end);
long countLineFeedsPlain(const unsigned char* begin, const unsigned char* end);

}  // namespace tapforge

#endif  // TAPFORGE_SVF_LINE_END_H
