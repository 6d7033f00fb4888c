#include "base/text_sink.h"

#include "base/number_text.h"

namespace vantorelix {

TextSink& TextSink::operator<<(std::string_view text) {
  gathered_ += text;
  flush_when_full();
  return *this;
}

TextSink& TextSink::operator<<(double value) {
  append_number(gathered_, value);
  flush_when_full();
  return *this;
}

TextSink& TextSink::operator<<(std::int64_t value) { return *this << std::string_view(std::to_string(value)); }

void TextSink::flush_when_full() {
  if (gathered_.size() >= kGathered) flush();
}

void StringSink::flush() {
  text_ += gathered_;
  gathered_.clear();
}

}  // namespace vantorelix
