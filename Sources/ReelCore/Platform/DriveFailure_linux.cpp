#include "ReelCore/Platform/DriveFailure.h"

#include <cerrno>
#include <cstring>
#include <set>
#include <string>

#include <locale.h>

namespace ReelCore {

namespace {

constexpr int ofDevices[]{
    EIO,    ENXIO,     ENODEV, ENOMEDIUM, EMEDIUMTYPE, EREMOTEIO,    ENODATA,
    EILSEQ, ETIME,     EBADE,  EREMCHG,   EBUSY,       ENOLINK,      ECANCELED,
    EPROTO, ESHUTDOWN, ENOSTR, ENOSR,     ECOMM,       ETOOMANYREFS, EOVERFLOW,
};

constexpr int ofFileSystems[]{
    ENOSPC, EDQUOT, EFBIG, EROFS, EUCLEAN, EBADMSG, EBADF, EACCES, ESTALE, ENOTCONN, ECONNABORTED,
};

constexpr int ofNetworks[]{
    ETIMEDOUT,   ECONNRESET,  ECONNREFUSED, EHOSTDOWN, EHOSTUNREACH, ENETDOWN,
    ENETUNREACH, ENETRESET,   ENONET,       EPIPE,     ENOBUFS,      EADDRNOTAVAIL,
    EKEYEXPIRED, EKEYREVOKED, EKEYREJECTED, ENOKEY,
};

std::set<std::string, std::less<>> allSentences() {
    std::set<std::string, std::less<>> sentences;
    const locale_t english = ::newlocale(LC_ALL_MASK, "C", locale_t{});
    const auto add = [&](const auto& codes) {
        for (const int code : codes) sentences.insert(::strerror_l(code, english));
    };
    add(ofDevices);
    add(ofFileSystems);
    add(ofNetworks);
    ::freelocale(english);
    // As another C library says it, with which an ffmpeg may have been built.
    for (const char* other : {"I/O error", "Quota exceeded", "Operation timed out",
                              "Socket not connected", "Host is unreachable", "Resource busy"}) {
        sentences.insert(other);
    }
    return sentences;
}

}  // namespace

bool isSentenceOfFailedDrive(std::string_view sentence) {
    static const auto sentences = allSentences();
    return sentences.contains(sentence);
}

}  // namespace ReelCore
