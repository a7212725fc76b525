#include "package_transfer.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <vector>

#include "base/file.h"
#include "base/reason.h"
#include "sha256.h"

namespace update_service {
namespace {

namespace fs = std::filesystem;

// So small that every whole percent is seen, and that a slow transfer moves a few times a second.
std::size_t ChunkSize(std::uint64_t size, std::uint64_t bytesPerSecond) {
    std::uint64_t chunk = std::clamp<std::uint64_t>(size / 100, 4 * 1024, 64 * 1024);
    if (bytesPerSecond != 0) chunk = std::min(chunk, std::max<std::uint64_t>(bytesPerSecond / 10, 1));
    return static_cast<std::size_t>(chunk);
}

struct FailureAskedFor : std::runtime_error {
    explicit FailureAskedFor(int percent)
        : std::runtime_error("at " + std::to_string(percent) + " percent, as asked for") {}
};

class TransferRun {
public:
    TransferRun(const Transfer& transfer, const std::stop_token& stop, const std::function<void(int)>& progress)
        : m_transfer(transfer), m_stop(stop), m_progress(progress) {}

    TransferEnd Execute() {
        if (!HasPackage()) {
            if (m_stop.stop_requested() || !CopyRest() || !CheckPart()) return TransferEnd::kStopped;
            m_progress(100);
            base::RenameDurably(m_transfer.files.part, m_transfer.files.package);
        } else {
            m_progress(100);
        }
        return TransferEnd::kComplete;
    }

private:
    // Whether an earlier transfer left the right package. Another one is of no use.
    bool HasPackage() {
        const fs::path& package = m_transfer.files.package;
        if (!fs::exists(package)) return false;
        const auto hash = Sha256OfFile(package, m_stop);
        if (hash == m_transfer.sha256) return true;
        if (hash) fs::remove(package);
        return false;
    }

    // False when stopped.
    bool CopyRest() {
        m_size = fs::file_size(m_transfer.source);
        std::ifstream source(m_transfer.source, std::ios::binary);
        if (!source) throw std::runtime_error(base::Utf8FromPath(m_transfer.source) + ": cannot be opened");
        base::AppendFile part(m_transfer.files.part);
        m_done = part.Size();
        if (m_done > m_size) {
            part.Clear();
            m_done = 0;
        }
        source.seekg(static_cast<std::streamoff>(m_done));
        TellProgress();
        const bool complete = Copy(source, part);
        if (complete) part.Sync();
        return complete;
    }

    bool Copy(std::ifstream& source, base::AppendFile& part) {
        Pacer pacer(m_transfer.bytesPerSecond, m_transfer.clock);
        std::vector<char> chunk(ChunkSize(m_size, m_transfer.bytesPerSecond));
        while (m_done < m_size) {
            const std::uint64_t size = std::min<std::uint64_t>(chunk.size(), m_size - m_done);
            if (!source.read(chunk.data(), static_cast<std::streamsize>(size))) {
                throw std::runtime_error(base::Utf8FromPath(m_transfer.source) + ": cannot be read to its end");
            }
            part.Append({chunk.data(), static_cast<std::size_t>(size)});
            m_done += size;
            TellProgress();
            if (!pacer.Passed(size, m_stop)) return false;
        }
        return true;
    }

    // Sends the percentage when it is a new one; the last one is not due before the package has been checked.
    void TellProgress() {
        const int percent = m_size == 0 ? 100 : static_cast<int>(m_done * 100 / m_size);
        if (const int shown = std::min(percent, 99); shown > m_shown) {
            m_shown = shown;
            m_progress(shown);
        }
        if (m_transfer.failAt && percent >= *m_transfer.failAt) throw FailureAskedFor(*m_transfer.failAt);
    }

    // False when stopped. A damaged part file is removed.
    bool CheckPart() {
        const auto hash = Sha256OfFile(m_transfer.files.part, m_stop);
        if (!hash) return false;
        if (hash == m_transfer.sha256) return true;
        fs::remove(m_transfer.files.part);
        throw std::runtime_error(base::Utf8FromPath(m_transfer.source) + ": is damaged: its SHA-256 is " + *hash +
                                 ", not " + m_transfer.sha256);
    }

    const Transfer& m_transfer;
    const std::stop_token& m_stop;
    const std::function<void(int)>& m_progress;
    std::uint64_t m_size = 0;  // [bytes]
    std::uint64_t m_done = 0;  // [bytes]
    int m_shown = -1;          // [percent]
};

}  // namespace

TransferResult RunTransfer(const Transfer& transfer, const std::stop_token& stop,
                           const std::function<void(int)>& progress) {
    try {
        return {TransferRun(transfer, stop, progress).Execute(), ""};
    } catch (const FailureAskedFor& error) {
        return {TransferEnd::kFailed, base::Reason(error), true};
    } catch (const std::exception& error) {
        return {TransferEnd::kFailed, base::Reason(error)};
    }
}

}  // namespace update_service
