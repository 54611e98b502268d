#include "ErrorHistogram.h"

#include <algorithm>

void ErrorHistogram::add(qint32 severity, qint32 frame)
{
    if (frame < 0 || (severity != error_list::SeverityError && severity != error_list::SeverityWarning))
        return;
    if (isEmpty()) {
        // Most often later frames follow.
        m_base = frame;
        m_firstFrame = m_lastFrame = frame;
    } else if (frame < m_base || frame >= m_base + m_width * binCount) {
        widen(frame);
    }
    m_firstFrame = std::min(m_firstFrame, frame);
    m_lastFrame = std::max(m_lastFrame, frame);
    Bin& bin = m_bins[static_cast<std::size_t>((frame - m_base) / m_width)];
    ++(severity == error_list::SeverityError ? bin.errors : bin.warnings);
}

/// Makes the bins wide enough to have a frame as well.
void ErrorHistogram::widen(qint32 frame)
{
    const std::array<Bin, binCount> old = m_bins;
    const std::int64_t oldBase = m_base;
    const std::int64_t oldWidth = m_width;
    const std::int64_t first = std::min(m_firstFrame, frame);
    const std::int64_t last = std::max(m_lastFrame, frame);
    m_base = first / m_width * m_width;
    while (last >= m_base + m_width * binCount) {
        m_width *= 2;
        m_base = first / m_width * m_width;
    }
    m_bins = {};
    for (std::size_t i = 0; i < old.size(); ++i) {
        if (old[i].sum() == 0)
            continue;
        // All frames of an old bin are in one new bin only if both begin at multiples of their widths.
        const std::int64_t start = std::max(oldBase + static_cast<std::int64_t>(i) * oldWidth, m_base);
        Bin& bin = m_bins[static_cast<std::size_t>((start - m_base) / m_width)];
        bin.errors += old[i].errors;
        bin.warnings += old[i].warnings;
    }
}

ErrorHistogram::Bin ErrorHistogram::countOf(std::int64_t first, std::int64_t last) const
{
    Bin sum;
    if (last < m_base)
        return sum;
    const std::int64_t from = std::clamp<std::int64_t>((first - m_base) / m_width, 0, binCount);
    const std::int64_t to = std::clamp<std::int64_t>((last - m_base) / m_width + 1, from, binCount);
    for (std::int64_t i = from; i < to; ++i) {
        sum.errors += m_bins[static_cast<std::size_t>(i)].errors;
        sum.warnings += m_bins[static_cast<std::size_t>(i)].warnings;
    }
    return sum;
}
