// Buffered byte streams over the callers' sinks and sources, counting the
// offset of every byte for reports.
#pragma once

#include "common.hpp"

namespace vexpers::formats {

// Collects bytes and hands them to the sink in blocks. The first sink
// failure is kept; later writes do nothing.
class Output {
public:
    explicit Output(const kfmt_sink* sink) : sink_(sink) {}
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
    kstd_result init() {
        KFMT_TRY(storage_.resize(capacity));
        buffer_ = storage_.data();
        return 0;
    }

    void put(char byte) {
        if (used_ == capacity) drain();
        buffer_[used_++] = byte;
    }
    void write(const void* bytes, size_t count) {
        const char* from = static_cast<const char*>(bytes);
        while (count > 0) {
            if (used_ == capacity) drain();
            size_t chunk = capacity - used_;
            if (chunk > count) chunk = count;
            std::memcpy(buffer_ + used_, from, chunk);
            used_ += chunk;
            from += chunk;
            count -= chunk;
        }
    }
    // Hands everything collected to the sink; the kept failure or 0.
    kstd_result flush() {
        drain();
        return failure_;
    }
    kstd_result failure() const { return failure_; }
    // Bytes written so far (collected or handed on).
    int64_t offset() const { return handedOn_ + static_cast<int64_t>(used_); }

private:
    void drain() {
        if (used_ > 0 && failure_ >= 0) {
            const kstd_result result = sink_->write(sink_->context, buffer_, used_);
            if (result < 0) failure_ = result;
        }
        handedOn_ += static_cast<int64_t>(used_);
        used_ = 0;
    }

    static constexpr size_t capacity = size_t{1} << 16;
    const kfmt_sink* sink_;
    Buffer<char> storage_;
    char* buffer_ = nullptr;
    size_t used_ = 0;
    int64_t handedOn_ = 0;
    kstd_result failure_ = 0;
};

// Reads the caller's source in blocks. Past the end (or after a source
// failure, or beyond maxBytes) it reads as ended; `failure()` tells which.
class Input {
public:
    Input(const kfmt_source* source, int64_t maxBytes) : source_(source), maxBytes_(maxBytes) {}
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;
    kstd_result init() {
        KFMT_TRY(storage_.resize(capacity));
        buffer_ = storage_.data();
        return 0;
    }

    // The next byte without taking it, -1 at the end.
    int peek() {
        if (position_ == filled_ && !refill()) return -1;
        return static_cast<uint8_t>(buffer_[position_]);
    }
    // Takes the next byte, -1 at the end.
    int take() {
        if (position_ == filled_ && !refill()) return -1;
        return static_cast<uint8_t>(buffer_[position_++]);
    }
    // Takes `count` bytes; false (with fewer taken) at the end.
    bool read(void* bytes, size_t count) {
        char* to = static_cast<char*>(bytes);
        while (count > 0) {
            if (position_ == filled_ && !refill()) return false;
            size_t chunk = filled_ - position_;
            if (chunk > count) chunk = count;
            std::memcpy(to, buffer_ + position_, chunk);
            position_ += chunk;
            to += chunk;
            count -= chunk;
        }
        return true;
    }
    // Offset of the next byte.
    int64_t offset() const { return base_ + static_cast<int64_t>(position_); }
    // Bytes the source still holds after the next one, as far as known
    // (the caps otherwise).
    int64_t remaining() const {
        int64_t limit = maxBytes_;
        if (source_->size >= 0 && source_->size < limit) limit = source_->size;
        const int64_t left = limit - offset();
        return left > 0 ? left : 0;
    }
    // The source's failure, kfmt_result_limitExceeded past maxBytes, or 0.
    kstd_result failure() const { return failure_; }
    bool atEnd() { return peek() < 0; }

    // For parsers that go byte by byte: peek() and take() without a call
    // while the buffer holds bytes (the refill stays out of line), and the
    // buffered bytes themselves, to scan a run of them at once.
    int peekInline() { return position_ != filled_ ? static_cast<uint8_t>(buffer_[position_]) : peekOutOfLine(); }
    int takeInline() {
        return position_ != filled_ ? static_cast<uint8_t>(buffer_[position_++]) : takeOutOfLine();
    }
    // The next byte and the number of bytes buffered from it on (0 when the
    // buffer is used up; peek() then refills it).
    const char* buffered(size_t* count) const {
        *count = filled_ - position_;
        return buffer_ + position_;
    }
    // Takes `count` (at most the number buffered) bytes of the buffer.
    void skipBuffered(size_t count) { position_ += count; }

private:
    __attribute__((noinline)) int peekOutOfLine() { return peek(); }
    __attribute__((noinline)) int takeOutOfLine() { return take(); }

    bool refill() {
        if (ended_) return false;
        base_ += static_cast<int64_t>(filled_);
        position_ = filled_ = 0;
        if (limitHit_) return stop(kfmt_result_limitExceeded);
        size_t count = 0;
        const kstd_result result = source_->read(source_->context, buffer_, capacity, &count);
        if (result < 0) return stop(result);
        if (count > capacity) return stop(kfmt_result_io);
        if (count == 0) return stop(0);
        // Bytes beyond maxBytes are not handed out; asking for more fails.
        if (base_ + static_cast<int64_t>(count) > maxBytes_) {
            count = static_cast<size_t>(maxBytes_ - base_);
            limitHit_ = true;
            if (count == 0) return stop(kfmt_result_limitExceeded);
        }
        filled_ = count;
        return true;
    }
    bool stop(kstd_result failure) {
        ended_ = true;
        failure_ = failure;
        return false;
    }

    const kfmt_source* source_;
    int64_t maxBytes_;
    static constexpr size_t capacity = size_t{1} << 16;
    Buffer<char> storage_;
    char* buffer_ = nullptr;
    size_t position_ = 0;
    size_t filled_ = 0;
    int64_t base_ = 0;
    bool ended_ = false;
    bool limitHit_ = false;
    kstd_result failure_ = 0;
};

}  // namespace vexpers::formats
