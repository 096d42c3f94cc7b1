// The binary format, shared by its encoder and decoder.
//
//   header   "VXPB", version (1 byte), three bytes 0
//   section  tag 'S' (start), 'L' (leaf) or 'E' (end); 'Z' ends the stream
//   start / leaf:
//     kinds       1 byte: leaf kind (bits 0-2), array kind (bits 3-4),
//                 array item (bit 5), has object id (bit 6), deleted (bit 7)
//     name        text reference
//     type name   text reference
//     derivation  1 byte (0..5)
//     access      unsigned number
//     id          unsigned number, when the node has an id
//     count       unsigned number, for an array of core items or a list
//     value       leaf kind 1: core type id (1 byte) and one value
//     items       array of core items: item core type id (1 byte) and
//                 `count` values
//   end: nothing
//   'Z': the number of start and leaf sections; nothing may follow.
//
// Numbers are unsigned LEB128; signed integers zigzag-encoded first.
// Values by category: integers and booleans as numbers, floating values as
// 8 bytes (IEEE 754, little-endian), strings as a text. A text is a number n
// (0: the null string, else n - 1 bytes) and UTF-8 in which unpaired
// surrogates are kept as three-byte sequences. A text reference is a number:
// 0 the null string, 1 a new text that follows and gets the next table index
// (from 0), k >= 2 the text of table index k - 2.
#pragma once

#include "common.hpp"

namespace vexpers::formats::binary {

inline constexpr char magic[4] = {'V', 'X', 'P', 'B'};
inline constexpr size_t headerSize = 8;

inline constexpr int tagStart = 'S';
inline constexpr int tagLeaf = 'L';
inline constexpr int tagEnd = 'E';
inline constexpr int tagFinish = 'Z';

inline constexpr uint32_t kindItem = 0x20;
inline constexpr uint32_t kindHasId = 0x40;
inline constexpr uint32_t kindDeleted = 0x80;

inline uint64_t zigzag(int64_t value) {
    return (static_cast<uint64_t>(value) << 1) ^ static_cast<uint64_t>(value >> 63);
}
inline int64_t unzigzag(uint64_t value) {
    return static_cast<int64_t>(value >> 1) ^ -static_cast<int64_t>(value & 1);
}

}  // namespace vexpers::formats::binary
