#pragma once

#include <string_view>

#include <QStringView>

namespace ombrelle {

// Receives the row names of one class one by one, in file order, without a
// list of strings being built: a long export walks 100,000 names this way.
class RowNameSink {
 public:
  virtual ~RowNameSink() = default;
  // A name of ASCII bytes only (none above 127), which read as themselves in
  // every encoding of the file.
  virtual void AsciiName(std::string_view bytes) = 0;
  // Any other name, as decoded text.
  virtual void TextName(QStringView text) = 0;
};

}  // namespace ombrelle
