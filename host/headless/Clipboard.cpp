#include "host/BuiltIn.h"

namespace kiv::host {
namespace {

/// A clipboard for this process alone: without a window system there is nobody else to give the text to.
class HeadlessClipboard : public Clipboard {
 public:
  void SetText(TextView text) override { text_ = text; }
  [[nodiscard]] Text GetText() override { return text_; }

 private:
  Text text_;
};

}  // namespace

Clipboard& BuiltInClipboard() {
  static HeadlessClipboard clipboard;
  return clipboard;
}

}  // namespace kiv::host
