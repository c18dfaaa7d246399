#include "host/JsonText.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <vector>

#include "Rex/Printable.h"

namespace Host {
namespace {

// Walks over a text and counts the lines that lie behind it.
class CountingIterator {
 public:
   using iterator_category = std::input_iterator_tag;
   using value_type = char;
   using difference_type = std::ptrdiff_t;
   using pointer = const char*;
   using reference = const char&;

   CountingIterator(const char* at, size_t& line) : at_(at), line_(&line) {}
   reference operator*() const { return *at_; }
   CountingIterator& operator++() {
      if (*at_++ == '\n') ++*line_;
      return *this;
   }
   CountingIterator operator++(int) {
      CountingIterator before = *this;
      ++*this;
      return before;
   }
   bool operator==(const CountingIterator& other) const { return at_ == other.at_; }

 private:
   const char* at_;
   size_t* line_;
};

// The parser's words without what it says of the place, which follows "column <n>: ".
std::string wordsOf(const std::exception& error) {
   std::string words = error.what();
   size_t column = words.find(", column ");
   size_t end = column == std::string::npos ? words.find("] ") : words.find(": ", column);
   if (end != std::string::npos) words.erase(0, end + 2);
   return Rex::printable(words);
}

// Whether the field at `path` is the one at `wanted`, or lies around it.
bool leadsTo(std::string_view path, std::string_view wanted) {
   if (!wanted.starts_with(path)) return false;
   return path.size() == wanted.size() || path.empty() || wanted[path.size()] == '.' ||
          wanted[path.size()] == '[';
}

// Follows the parser through a text: refuses what may not be, and finds the line of one field.
class Reader {
 public:
   explicit Reader(std::string_view wanted) : wanted_(wanted) {}

   Rex::Json parse(std::string_view text, JsonText::Comments comments);
   size_t foundLine() const { return foundLine_; }

 private:
   using Event = Rex::Json::parse_event_t;

   // An object or an array around the present place.
   struct Level {
      std::string path;
      bool array = false;
      size_t elements = 0;
      std::map<std::string, size_t> names = {};  // of an object, with their lines
   };

   void handle(Event event, const Rex::Json& parsed);
   void open(bool array);
   void name(const std::string& name);
   std::string place();
   void note(std::string_view path);

   const std::string_view wanted_;
   size_t line_ = 1;
   std::vector<Level> levels_;
   std::string field_;  // the one named last
   size_t foundSize_ = 0;
   size_t foundLine_ = 1;
};

Rex::Json Reader::parse(std::string_view text, JsonText::Comments comments) {
   auto follow = [this](int, Event event, Rex::Json& parsed) {
      handle(event, parsed);
      return true;
   };
   try {
      return Rex::Json::parse(CountingIterator(text.begin(), line_),
                              CountingIterator(text.end(), line_), follow, true,
                              comments == JsonText::Comments::allowed);
   } catch (const Rex::Json::parse_error& error) {
      // It stops behind what it does not understand.
      size_t before = std::min(error.byte ? error.byte - 1 : 0, text.size());
      throw JsonTextError(1 + std::count(text.begin(), text.begin() + before, '\n'),
                          wordsOf(error));
   } catch (const Rex::Json::exception& error) {
      throw JsonTextError(line_, wordsOf(error));
   }
}

void Reader::handle(Event event, const Rex::Json& parsed) {
   switch (event) {
      case Event::object_start:
         return open(false);
      case Event::array_start:
         return open(true);
      case Event::key:
         return name(parsed.get_ref<const std::string&>());
      case Event::value:
         place();
         return;
      case Event::object_end:
      case Event::array_end:
         levels_.pop_back();
         return;
   }
}

void Reader::open(bool array) {
   if (levels_.size() == Rex::mostJsonLevels) {
      throw JsonTextError(
          line_, "nested more than " + std::to_string(Rex::mostJsonLevels) + " levels deep");
   }
   std::string path = place();
   note(path);
   levels_.push_back({std::move(path), array});
}

void Reader::name(const std::string& name) {
   Level& around = levels_.back();
   field_ = Rex::fieldPath(around.path, name);
   auto [first, fresh] = around.names.emplace(name, line_);
   if (!fresh) {
      throw JsonTextError(line_, Rex::printable(field_) + ": stands in line " +
                                     std::to_string(first->second) + " already");
   }
   note(field_);
}

// The path of the value that begins here.
std::string Reader::place() {
   if (levels_.empty()) return {};
   Level& around = levels_.back();
   if (!around.array) return field_;
   return Rex::elementPath(around.path, around.elements++);
}

void Reader::note(std::string_view path) {
   if (!leadsTo(path, wanted_) || path.size() <= foundSize_) return;
   foundSize_ = path.size();
   foundLine_ = line_;
}

}  // namespace

JsonText::JsonText(std::string text, Comments comments)
    : text_(std::move(text)), comments_(comments), json_(Reader({}).parse(text_, comments_)) {}

size_t JsonText::lineOf(std::string_view path) const {
   Reader reader(path);
   reader.parse(text_, comments_);
   return reader.foundLine();
}

}  // namespace Host
