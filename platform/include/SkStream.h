// Byte sources. Fonts are read from them.
#pragma once

#include <cstddef>
#include <memory>

class SkStream {
public:
    virtual ~SkStream() = default;
    SkStream(const SkStream&) = delete;
    SkStream& operator=(const SkStream&) = delete;

    // Copies up to size bytes into buffer, or skips them when buffer is null, and gives the number
    // of bytes passed over: less than size at the end.
    virtual size_t read(void* buffer, size_t size) = 0;
    size_t skip(size_t size) { return read(nullptr, size); }
    virtual bool isAtEnd() const = 0;
    // All bytes, or null for a stream that does not keep them in memory.
    virtual const void* getMemoryBase() { return nullptr; }

protected:
    SkStream() = default;
};

// A stream of known length that can be moved in and duplicated.
class SkStreamAsset : public SkStream {
public:
    virtual bool rewind() = 0;
    virtual size_t getPosition() const = 0;
    // Moves to position, at most to the end.
    virtual bool seek(size_t position) = 0;
    virtual size_t getLength() const = 0;
    // A second stream over the same bytes, at the beginning.
    std::unique_ptr<SkStreamAsset> duplicate() const {
        return std::unique_ptr<SkStreamAsset>(this->onDuplicate());
    }

private:
    virtual SkStreamAsset* onDuplicate() const = 0;
};

class SkMemoryStream : public SkStreamAsset {
public:
    // Borrows length bytes at data, which must then outlive the stream, its duplicates and the
    // typefaces made from it; with copyData true they are copied. Null data, or a copy that cannot
    // be allocated, gives an empty stream.
    SkMemoryStream(const void* data, size_t length, bool copyData = false);

    size_t read(void* buffer, size_t size) override;
    bool isAtEnd() const override { return fOffset == fLength; }
    bool rewind() override;
    size_t getPosition() const override { return fOffset; }
    bool seek(size_t position) override;
    size_t getLength() const override { return fLength; }
    const void* getMemoryBase() override { return fData.get(); }

private:
    SkMemoryStream(std::shared_ptr<const void> data, size_t length);
    SkStreamAsset* onDuplicate() const override;

    // Owns nothing when the bytes are borrowed.
    std::shared_ptr<const void> fData;
    size_t fLength = 0;
    size_t fOffset = 0;
};
