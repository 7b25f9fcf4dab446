#ifndef VX_GRAPH_H
#define VX_GRAPH_H

/**
 * @file
 * Graphs: walks, strongly connected components, regions.
 */

#include "vx/types.h"
#include "vx/list.h"

VX_C_BEGIN

typedef struct VxGraph {
    VxList *nodes, *edges, *regions;
    void *context;
} VxGraph;

typedef struct VxGraphNode {
    VxList *edges;
    intptr_t reserved;
    int32_t number, parentNode, parentEdge, low, low2;
    double val[2];
    int32_t removed;
    void *user;
} VxGraphNode;

typedef struct VxGraphEdge {
    int32_t from, to, regionCount, region[2];
    double weight;
    int32_t cycle, removed;
} VxGraphEdge;

typedef struct VxGraphRegion {
    VxList *edges;
    intptr_t spare;
} VxGraphRegion;

typedef uint32_t (*VxGraphWalkFn)(VxGraph *graph, int32_t from, int32_t to, int32_t edge, int32_t event);

VX_API uint32_t VxGraphMk(int32_t n, VxGraph *graph);
VX_API uint32_t VxGraphAddEdge(VxGraph *graph, int32_t from, int32_t to, int32_t directed, VxGraphEdge **edge);
VX_API uint32_t VxGraphEdgeDel(VxGraph *graph, int32_t number);
VX_API uint32_t VxGraphNodeDel(VxGraph *graph, int32_t number);
VX_API uint32_t VxGraphFree(VxGraph *graph);
VX_API uint32_t VxGraphWalkInit(VxGraph *graph);
VX_API uint32_t VxGraphWalk(VxGraph *graph, int32_t mode, int32_t start, int32_t target, VxGraphWalkFn fn, int32_t *counter, int32_t *found);
VX_API uint32_t VxGraphSCC(VxGraph *graph, int32_t *count, VxList ***components);
VX_API uint32_t VxRgnFromNode(VxGraph *graph, int32_t node);
VX_API uint32_t VxRgnFromPath(VxGraph *graph, VxList *path);

VX_C_END

#endif
