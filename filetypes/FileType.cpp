#include "filetypes/FileType.h"

#include "platform/files/FileTypes.h"

namespace veltrane {

FileType::~FileType()
{
    Deregister();
}

void FileType::Imported(bool fresh)
{
    Deregister();
    mImported = fresh;
}

void FileType::Write(String& field, const String& fresh)
{
    Deregister();
    field = fresh;
}

void FileType::Register()
{
    if (mRegistered)
        return;
    RuntimeRegisterFileType(mName, mMacCreator, mMacType, mExtension, UTI());
    mRegistered = true;
}

void FileType::Deregister()
{
    if (!mRegistered)
        return;
    RuntimeDeregisterFileType(mName);
    mRegistered = false;
}

String FileType::Operator_Convert()
{
    Register();
    return Name();
}

} // namespace veltrane
