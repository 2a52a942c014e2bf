#pragma once

#include <QAbstractNativeEventFilter>
#include <QWidget>
#include <cstdint>
#include <functional>

namespace platform::qt {

// Notices when the desktop asks a window to close while a box is over it. The toolkit keeps such a
// request from the window; without a box the window has it itself.
class CloseRequestWatch : public QAbstractNativeEventFilter {
  public:
    // `window` must outlive the object. Watches nothing where there is no X display.
    CloseRequestWatch(const QWidget& window, std::function<void()> asked);
    ~CloseRequestWatch() override;
    CloseRequestWatch(const CloseRequestWatch&) = delete;
    CloseRequestWatch& operator=(const CloseRequestWatch&) = delete;

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

  private:
    const QWidget& window_;
    std::function<void()> asked_;
    std::uint32_t protocols_ = 0;  // the display's names of the request
    std::uint32_t deletion_ = 0;
};

}  // namespace platform::qt
