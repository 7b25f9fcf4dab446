#include "files/path_list.h"

#include "vx/mem.h"
#include "vx/str.h"

namespace vx::files {

VxPathNode **findLink(VxPathNode **list, const char *text) noexcept
{
    while (*list && VxStrcasecmp((*list)->text, text) != 0)
        list = &(*list)->next;
    return list;
}

VxPathNode **endOf(VxPathNode **list) noexcept
{
    while (*list)
        list = &(*list)->next;
    return list;
}

VxPathNode *makeNode(const char *text) noexcept
{
    void *block = nullptr;
    if (VxMemAlloc(sizeof(VxPathNode), &block))
        return nullptr;
    VxPathNode *node = static_cast<VxPathNode *>(block);
    VxStrCpy(node->text, text, sizeof node->text);
    node->next = nullptr;
    return node;
}

void removeAt(VxPathNode **link) noexcept
{
    void *node = *link;
    *link = (*link)->next;
    VxMemFree(&node);
}

void freeList(VxPathNode *&list) noexcept
{
    while (list)
        removeAt(&list);
}

}
