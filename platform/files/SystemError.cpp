#include "platform/files/SystemError.h"

#include <cerrno>
#include <cstring>

#include "platform/values/Exceptions.h"

namespace veltrane {

namespace {

struct Reason {
    int error;
    const char* text;
};

// Ours rather than strerror's: that one speaks French only where the French locale is installed.
constexpr Reason kReasons[] = {
    { EACCES, "accès refusé" },
    { EPERM, "opération non autorisée" },
    { ENOENT, "fichier ou dossier introuvable" },
    { ENOTDIR, "le chemin ne mène pas à un dossier" },
    { EISDIR, "c'est un dossier" },
    { EINVAL, "ce n'est pas un fichier ordinaire" },
    { ENAMETOOLONG, "le nom est trop long" },
    { ENOSPC, "plus de place sur le disque" },
    { EDQUOT, "quota de disque dépassé" },
    { EFBIG, "fichier trop grand pour ce disque" },
    { EROFS, "le disque est en lecture seule" },
    { EIO, "erreur d'entrée-sortie du disque" },
    { EBUSY, "le fichier ou le dossier est occupé" },
    { ETXTBSY, "le fichier est en cours d'exécution" },
    { ELOOP, "les liens tournent en rond" },
    { EMFILE, "trop de fichiers ouverts" },
    { ENFILE, "trop de fichiers ouverts" },
    { ENOMEM, "mémoire insuffisante" },
    { ENODEV, "le disque n'est plus là" },
    { ESTALE, "le dossier du réseau n'est plus là" },
    { ETIMEDOUT, "le disque ou le réseau ne répond pas" },
    { EILSEQ, "ce disque n'accepte pas ce nom" },
};

} // namespace

String SystemReason(int error)
{
    for (const Reason& reason : kReasons) {
        if (reason.error == error)
            return reason.text;
    }
    return std::strerror(error);
}

void RaiseIO(const String& what, int error)
{
    throw IOException(what + " : " + SystemReason(error), error);
}

} // namespace veltrane
