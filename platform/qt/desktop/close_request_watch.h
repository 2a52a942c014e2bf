#pragma once

#include <QAbstractNativeEventFilter>
#include <QWidget>
#include <cstdint>
#include <functional>

namespace platform::qt {

// Tells when the desktop asks a window to close while a box is over it. The toolkit keeps such a
// request from the window; without a box the window has it itself.
class CloseWatch : public QAbstractNativeEventFilter {
  public:
    // `window` must outlive the object. Watches nothing where there is no X display.
    CloseWatch(const QWidget& window, std::function<void()> asked);
    ~CloseWatch() override;
    CloseWatch(const CloseWatch&) = delete;
    CloseWatch& operator=(const CloseWatch&) = delete;

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

  private:
    const QWidget& window_;
    std::function<void()> asked_;
    std::uint32_t protocols_ = 0;  // the display's names of the request
    std::uint32_t deletion_ = 0;
};

}  // namespace platform::qt
