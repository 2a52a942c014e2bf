#include "platform/qt/desktop/accessible_places.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QScreen>
#include <QWidget>
#include <algorithm>

namespace platform::qt {

// A reference to an object on the bus, as the protocol has it.
struct BusReference {
    QString service;
    QDBusObjectPath path;
};

QDBusArgument& operator<<(QDBusArgument& argument, const BusReference& reference) {
    argument.beginStructure();
    argument << reference.service << reference.path;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, BusReference& reference) {
    argument.beginStructure();
    argument >> reference.service >> reference.path;
    argument.endStructure();
    return argument;
}

namespace {

const QString kBus = QStringLiteral("a11y");
const QString kObjects = QStringLiteral("/org/a11y/atspi/accessible");
const QString kNoObject = QStringLiteral("/org/a11y/atspi/null");
constexpr int kLongestText = 4096;

// What a place is measured from.
enum class Origin : uint { Desktop, Window, Parent };

// The widget that an object is or stands on.
const QWidget* WidgetOf(const QAccessibleInterface* object) {
    while (object != nullptr) {
        if (const auto* const widget = qobject_cast<const QWidget*>(object->object())) {
            return widget;
        }
        object = object->parent();
    }
    return nullptr;
}

// The toolkit's pixels and the desktop's have the origin of the monitor in common.
struct Scale {
    explicit Scale(const QAccessibleInterface& object) {
        if (const QWidget* const widget = WidgetOf(&object)) {
            origin = widget->screen()->geometry().topLeft();
            factor = widget->devicePixelRatioF();
        }
    }
    QPoint ToDesktop(QPoint point) const {
        return origin + (QPointF(point - origin) * factor).toPoint();
    }
    QRect ToDesktop(const QRect& rect) const {
        const QPoint end = ToDesktop(rect.bottomRight() + QPoint(1, 1));
        return {ToDesktop(rect.topLeft()), end - QPoint(1, 1)};
    }
    QPoint FromDesktop(QPoint point) const {
        return origin + (QPointF(point - origin) / factor).toPoint();
    }

    QPoint origin;
    double factor = 1;
};

// In the toolkit's pixels. A control takes up what its user can tap.
QRect ToolkitPlace(const QAccessibleInterface& object) {
    const auto* const widget = qobject_cast<const QWidget*>(object.object());
    if (object.state().invisible) {
        return {};
    }
    return widget == nullptr ? object.rect()
                             : QRect(widget->mapToGlobal(QPoint(0, 0)), widget->size());
}

// Where, on the desktop, places of this origin begin.
QPoint BeginningOf(const QAccessibleInterface& object, Origin origin) {
    const QWidget* const widget = WidgetOf(&object);
    QPoint beginning = Scale(object).origin;
    if (origin == Origin::Window && widget != nullptr) {
        beginning = widget->window()->mapToGlobal(QPoint(0, 0));
    } else if (origin == Origin::Parent && object.parent() != nullptr) {
        beginning = ToolkitPlace(*object.parent()).topLeft();
    } else {
        return {};
    }
    return Scale(object).ToDesktop(beginning);
}

struct Question {
    QAccessibleInterface& object;
    QList<QVariant> words;
    const QDBusConnection& bus;

    int Number(qsizetype index) const { return words.value(index).toInt(); }
    QPoint Beginning(qsizetype index) const {
        return BeginningOf(object, Origin{words.value(index).toUInt()});
    }
    QRect Place(const QRect& rect, qsizetype origin) const {
        return rect.isNull() ? QRect()
                             : Scale(object).ToDesktop(rect).translated(-Beginning(origin));
    }
    // The point of the first two words, in the toolkit's pixels.
    QPoint Point() const {
        return Scale(object).FromDesktop(QPoint(Number(0), Number(1)) + Beginning(2));
    }
};

using Answer = QVariantList;

Answer Numbers(const QRect& rect) {
    return {rect.x(), rect.y(), rect.width(), rect.height()};
}

Answer Extents(const Question& question) {
    return {question.Place(ToolkitPlace(question.object), 0)};
}

Answer Position(const Question& question) {
    return Numbers(question.Place(ToolkitPlace(question.object), 0)).first(2);
}

Answer Size(const Question& question) {
    return Numbers(question.Place(ToolkitPlace(question.object), 0)).last(2);
}

Answer Contains(const Question& question) {
    return {ToolkitPlace(question.object).contains(question.Point())};
}

Answer ObjectAt(const Question& question) {
    const QPoint point = question.Point();
    const QAccessibleInterface* found = question.object.childAt(point.x(), point.y());
    if (found == nullptr && ToolkitPlace(question.object).contains(point)) {
        found = &question.object;
    }
    const QString path =
        found == nullptr
            ? kNoObject
            : kObjects + '/' +
                  QString::number(QAccessible::uniqueId(const_cast<QAccessibleInterface*>(found)));
    return {QVariant::fromValue(BusReference{question.bus.baseService(), QDBusObjectPath(path)})};
}

QRect TextPlace(QAccessibleInterface& object, int start, int end) {
    QRect place;
    auto* const text = object.textInterface();
    for (int offset = start; text != nullptr && offset < std::min(end, start + kLongestText);
         ++offset) {
        place |= text->characterRect(offset);
    }
    return place;
}

Answer CharacterExtents(const Question& question) {
    const int offset = question.Number(0);
    return Numbers(question.Place(TextPlace(question.object, offset, offset + 1), 1));
}

Answer RangeExtents(const Question& question) {
    return Numbers(
        question.Place(TextPlace(question.object, question.Number(0), question.Number(1)), 2));
}

Answer OffsetAt(const Question& question) {
    auto* const text = question.object.textInterface();
    return {text == nullptr ? -1 : text->offsetAtPoint(question.Point())};
}

constexpr struct {
    const char* member;
    Answer (*answer)(const Question& question);
} kAnswers[] = {
    {"GetExtents", Extents},
    {"GetPosition", Position},
    {"GetSize", Size},
    {"Contains", Contains},
    {"GetAccessibleAtPoint", ObjectAt},
    {"GetCharacterExtents", CharacterExtents},
    {"GetRangeExtents", RangeExtents},
    {"GetOffsetAtPoint", OffsetAt},
};

// Null for a path that names no object of the program's windows.
QAccessibleInterface* ObjectOf(const QString& path) {
    bool isNumber = false;
    const uint id = path.mid(path.lastIndexOf('/') + 1).toUInt(&isNumber);
    QAccessibleInterface* const object = isNumber ? QAccessible::accessibleInterface(id) : nullptr;
    return object != nullptr && object->isValid() ? object : nullptr;
}

}  // namespace

AccessiblePlaces::AccessiblePlaces(QObject* parent) : QDBusVirtualObject(parent) {
    qDBusRegisterMetaType<BusReference>();
    QAccessible::installActivationObserver(this);
    JoinBridge(QAccessible::isActive());
}

AccessiblePlaces::~AccessiblePlaces() {
    QAccessible::removeActivationObserver(this);
}

void AccessiblePlaces::accessibilityActiveChanged(bool active) {
    JoinBridge(active);
}

// The bridge comes to the bus right after this.
void AccessiblePlaces::JoinBridge(bool active) {
    if (active) {
        QCoreApplication::postEvent(this, new QEvent(QEvent::User));
    }
}

void AccessiblePlaces::customEvent(QEvent* /*event*/) {
    StandBeforeBridge();
}

void AccessiblePlaces::StandBeforeBridge() {
    QDBusConnection bus(kBus);
    QObject* const registered = bus.isConnected() ? bus.objectRegisteredAt(kObjects) : nullptr;
    if (registered != nullptr && registered != this) {
        bridge_ = static_cast<QDBusVirtualObject*>(registered);
        bus.unregisterObject(kObjects);
        bus.registerVirtualObject(kObjects, this, QDBusConnection::SubPath);
    }
}

QString AccessiblePlaces::introspect(const QString& path) const {
    return bridge_ == nullptr ? QString() : bridge_->introspect(path);
}

bool AccessiblePlaces::handleMessage(const QDBusMessage& message,
                                     const QDBusConnection& connection) {
    const auto* const row = std::ranges::find_if(
        kAnswers, [&](const auto& each) { return message.member() == QLatin1String(each.member); });
    QAccessibleInterface* const object = ObjectOf(message.path());
    if (row == std::end(kAnswers) || object == nullptr) {
        return bridge_ != nullptr && bridge_->handleMessage(message, connection);
    }
    return connection.send(
        message.createReply(row->answer({*object, message.arguments(), connection})));
}

}  // namespace platform::qt
