// The layout of a ring trace file, in the machine's own byte order; docs/ringlog.md tells it whole.
#pragma once

#include <array>
#include <cstdint>

namespace RingLog {

constexpr int rings = 10;  // one for each trace level

struct Ring {
   uint32_t offset;  // from the file's start, a multiple of 8
   uint32_t size;    // octets, a multiple of 8
   uint32_t oldest;  // offset within the ring of the oldest record
   uint32_t next;    // where the next record goes; equal to `oldest` in an empty ring
};

struct FileHeader {
   static constexpr std::array<char, 8> right{'R', 'I', 'N', 'G', 'L', 'O', 'G', '1'};

   std::array<char, 8> magic;
   uint32_t headerSize;        // of this structure
   uint32_t recordHeaderSize;  // of RecordHeader
   uint64_t written;           // statements so far, over all rings
   uint64_t processId;
   double started;  // seconds, on the base of all records
   std::array<Ring, rings> ring;
};
static_assert(sizeof(FileHeader) == 40 + rings * sizeof(Ring));

// In front of each record's text. The next record stands `size` octets on, or at the ring's start
// where the ring ends.
struct RecordHeader {
   static constexpr uint8_t filler = 0xFF;  // as level: no statement, only room up to the end

   uint32_t size;           // of the whole record, a multiple of 8
   uint16_t textLength;     // facility's name and statement together
   uint8_t facilityLength;  // how much of the text is the facility's name
   uint8_t level;
   uint64_t sequence;  // place among all statements of the file, from 0
   double time;        // seconds
};
static_assert(sizeof(RecordHeader) == 24);

}  // namespace RingLog
