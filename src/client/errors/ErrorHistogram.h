#pragma once

#include "ErrorList.h"

#include <array>
#include <cstdint>

/// How many errors and warnings there are in which frames. It takes a fixed amount of memory: the more frames
/// there are, the more of them are counted together.
class ErrorHistogram {
public:
    static constexpr int binCount = 512;

    struct Bin {
        std::uint32_t errors = 0;
        std::uint32_t warnings = 0;
        std::uint32_t sum() const { return errors + warnings; }
    };

    void clear() { *this = ErrorHistogram(); }
    /// Rows without a frame are not counted.
    void add(qint32 severity, qint32 frame);

    bool isEmpty() const { return m_lastFrame < m_firstFrame; }
    qint32 firstFrame() const { return m_firstFrame; }
    qint32 lastFrame() const { return m_lastFrame; }
    /// The counts of the frames from one to another, as far as they are counted apart.
    Bin countOf(std::int64_t first, std::int64_t last) const;
    /// The frames that are counted together with a frame: the first of them, and how many they are.
    std::int64_t binStart(std::int64_t frame) const { return m_base + (frame - m_base) / m_width * m_width; }
    std::int64_t binWidth() const { return m_width; }

private:
    void widen(qint32 frame);

    std::array<Bin, binCount> m_bins{};
    std::int64_t m_base = 0; ///< First frame of the first bin, a multiple of the width.
    std::int64_t m_width = 1; ///< Frames of a bin, a power of two.
    qint32 m_firstFrame = 0;
    qint32 m_lastFrame = -1;
};
