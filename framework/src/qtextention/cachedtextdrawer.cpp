#include <qtextention/cachedtextdrawer.h>
#include <qtextention/guards.h>

#include <QFontMetrics>
#include <QPainter>

namespace {
constexpr int kPadding = 3;  // around a badge's text
}

CachedTextDrawer::CachedTextDrawer(int capacity) : m_capacity(qMax(1, capacity)) {}

QSize CachedTextDrawer::size(const QString& text, const Look& look)
{
    const QFontMetrics metrics(look.font);
    const int padding = look.background.alpha() ? 2 * kPadding : 0;
    return {metrics.horizontalAdvance(text) + padding, metrics.height() + (padding ? 2 : 0)};
}

QSize CachedTextDrawer::draw(QPainter& painter, const QPoint& topLeft, const QString& text, const Look& look)
{
    const QPixmap& cached = pixmap(text, look, painter.device()->devicePixelRatioF());
    painter.drawPixmap(topLeft, cached);
    return cached.deviceIndependentSize().toSize();
}

const QPixmap& CachedTextDrawer::pixmap(const QString& text, const Look& look, qreal pixelRatio)
{
    const QString key = text + QChar(0) + look.font.key() + QChar(0) + look.text.name(QColor::HexArgb) + QChar(0) +
                        look.background.name(QColor::HexArgb) + QChar(0) + QString::number(pixelRatio);
    if (auto found = m_index.find(key); found != m_index.end()) {
        m_entries.splice(m_entries.begin(), m_entries, found->second);
        return m_entries.front().pixmap;
    }
    const QSize logical = size(text, look);
    QPixmap rendered(logical * pixelRatio);
    rendered.setDevicePixelRatio(pixelRatio);
    rendered.fill(Qt::transparent);
    {
        QPainter painter(&rendered);
        AntialiasGuard smooth(&painter, true);
        const QRect area(QPoint(0, 0), logical);
        if (look.background.alpha()) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(look.background);
            painter.drawRoundedRect(area, 4, 4);
        }
        painter.setFont(look.font);
        painter.setPen(look.text);
        painter.drawText(area, Qt::AlignCenter, text);
    }
    ++m_renders;
    m_entries.push_front({key, std::move(rendered)});
    m_index[key] = m_entries.begin();
    if (int(m_entries.size()) > m_capacity) {
        m_index.erase(m_entries.back().key);
        m_entries.pop_back();
    }
    return m_entries.front().pixmap;
}
