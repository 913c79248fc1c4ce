#include "state/shared_bytes.h"

#include <algorithm>
#include <cstring>

#include "state/repeat_mark.h"

namespace kestrail {

class CSharedBytes::CParts {
public:
    explicit CParts(std::uint64_t size) : m_size(size) { s_all += size; }
    CParts(const CParts&) = delete;
    CParts& operator=(const CParts&) = delete;
    ~CParts() { s_all -= m_size; }

    static std::uint64_t All() { return s_all; }

private:
    inline static std::uint64_t s_all = 0;
    std::uint64_t m_size;
};

CSharedBytes CSharedBytes::Borrow(const std::uint8_t* data, std::size_t size) {
    CSharedBytes bytes;
    bytes.m_data = data;
    bytes.m_dataSize = bytes.m_size = data != nullptr ? size : 0;
    return bytes;
}

const std::uint8_t* CSharedBytes::Get(std::vector<std::uint8_t>& room) const {
    if (!m_parts) return m_data;
    room.assign(m_size, 0);
    if (m_data != nullptr) std::memcpy(room.data(), m_data, std::min(m_dataSize, m_size));
    for (std::int32_t i = 0; i < m_pieces->Count(); ++i) {
        const Piece& piece = *m_pieces->ValueAt(i);
        const std::size_t start = std::size_t{m_pieces->KeyAt(i)} * kPiece;
        if (start >= m_size) continue;
        std::memcpy(room.data() + start, piece.begin(),
                    std::min<std::size_t>(piece.Size(), m_size - start));
    }
    return room.data();
}

bool CSharedBytes::Takes(std::uint64_t size) const {
    return size <= kLargest && (m_parts || CParts::All() + size <= kLargestOfAll);
}

void CSharedBytes::Put(std::size_t size, const SByteRows& rows) {
    ++unrepeatableUpdates;
    if (!m_parts) m_parts = std::make_shared<CParts>(size);
    m_size = size;
    for (std::size_t row = 0; row < rows.count; ++row) {
        PutRow(rows.offset + row * rows.stride, rows.data + row * rows.dataStride, rows.length);
    }
}

void CSharedBytes::PutRow(std::size_t offset, const std::uint8_t* data, std::size_t length) {
    while (length > 0) {
        const std::size_t within = offset % kPiece;
        const std::size_t count = std::min(length, kPiece - within);
        std::memcpy(WritePiece(static_cast<std::uint32_t>(offset / kPiece)) + within, data, count);
        offset += count;
        data += count;
        length -= count;
    }
}

std::uint8_t* CSharedBytes::WritePiece(std::uint32_t number) {
    Pieces& pieces = m_pieces.Write();
    const std::size_t start = std::size_t{number} * kPiece;
    const std::size_t size = std::min(kPiece, m_size - start);
    Piece* piece = pieces.Find(number);
    if (piece == nullptr || piece->Size() < size) {
        Piece whole(static_cast<std::uint32_t>(size));
        if (piece != nullptr) {
            std::copy(piece->begin(), piece->end(), whole.WriteAll());
        } else if (start < m_dataSize) {
            std::memcpy(whole.WriteAll(), m_data + start, std::min(size, m_dataSize - start));
        }
        piece = &pieces.GetOrCreate(number);
        *piece = std::move(whole);
    }
    return piece->WriteAll();
}

}  // namespace kestrail
