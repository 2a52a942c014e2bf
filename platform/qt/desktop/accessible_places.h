#pragma once

#include <QAccessible>
#include <QDBusVirtualObject>
#include <QPointer>

namespace platform::qt {

// Answers assistive technology where things are, and what is at a point, in pixels of the desktop.
// The toolkit's own bridge answers in its pixels, which are the handheld's: at any scale but 1 a
// screen reader would look for every control in the wrong place. All other questions go on to the
// bridge.
class AccessiblePlaces : public QDBusVirtualObject, public QAccessible::ActivationObserver {
  public:
    // From now on, whenever assistive technology comes. `parent` owns the object.
    explicit AccessiblePlaces(QObject* parent);
    ~AccessiblePlaces() override;

    void accessibilityActiveChanged(bool active) override;
    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

  protected:
    void customEvent(QEvent* event) override;

  private:
    void JoinBridge(bool active);
    void StandBeforeBridge();

    QPointer<QDBusVirtualObject> bridge_;
};

}  // namespace platform::qt
