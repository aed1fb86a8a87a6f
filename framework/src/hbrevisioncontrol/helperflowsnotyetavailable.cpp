// Operations whose flows this build of the plug-in does not carry yet. Each one gives the answer
// that changes nothing.
#include "revisioncontroluihelper.h"

void CRevisionControlUIHelper::OnPreCommit(ItemLibraryAccessor&, bool* cancel)
{
    if (cancel)
        *cancel = false;
}

void CRevisionControlUIHelper::OnPostCommit(ItemLibraryAccessor&)
{
}
