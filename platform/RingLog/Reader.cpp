#include "RingLog/Reader.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "RingLog/Format.h"

namespace RingLog {
namespace {

template <class T>
bool load(const std::string& octets, std::size_t at, T& value) {
   if (octets.size() < sizeof(T) || at > octets.size() - sizeof(T)) return false;
   std::memcpy(&value, octets.data() + at, sizeof(T));
   return true;
}

void readRing(const std::string& octets, const Ring& ring, std::vector<Record>& records) {
   uint32_t at = ring.oldest;
   // The sum of all sizes bounds the walk, whatever the file holds.
   for (uint32_t walked = 0; at != ring.next && walked < ring.size;) {
      RecordHeader header;
      std::size_t place = std::size_t(ring.offset) + at;
      if (at >= ring.size || !load(octets, place, header)) return;
      bool sound = header.size >= sizeof(header) && header.size <= ring.size - at &&
                   header.facilityLength <= header.textLength &&
                   header.textLength <= header.size - sizeof(header) &&
                   place + header.size <= octets.size();
      if (!sound) return;
      if (header.level != RecordHeader::filler) {
         std::string text = octets.substr(place + sizeof(header), header.textLength);
         records.push_back({header.sequence, header.time, header.level,
                            text.substr(0, header.facilityLength),
                            text.substr(header.facilityLength)});
      }
      walked += header.size;
      at = at + header.size == ring.size ? 0 : at + header.size;
   }
}

}  // namespace

std::vector<Record> read(const std::string& path) {
   std::ifstream file(path, std::ios::binary);
   std::string octets{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
   FileHeader header;
   if (!load(octets, 0, header) || header.magic != FileHeader::right ||
       header.headerSize != sizeof(FileHeader) || header.recordHeaderSize != sizeof(RecordHeader)) {
      throw std::runtime_error(path + " is no ring trace of this version");
   }
   std::vector<Record> records;
   for (const Ring& ring : header.ring) readRing(octets, ring, records);
   std::sort(records.begin(), records.end(),
             [](const Record& a, const Record& b) { return a.sequence < b.sequence; });
   return records;
}

}  // namespace RingLog
