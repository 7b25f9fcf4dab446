#ifndef VX_GRAPH_H
#define VX_GRAPH_H

/**
 * @file
 * Graphs: walks, strongly connected components, regions.
 *
 * Nodes and edges are numbered from 0 in the order they came; removing one
 * leaves the numbers of the others alone. The records are open: they may be
 * read between calls, and weights, doubles and user pointers set.
 *
 * Addresses    Of an edge record it dies with the next VxGraphAddEdge; node
 *              records stay where they are.
 * Lists        A node's list of edges has its record in the graph: another list
 *              may take its place after VxListDel, but it keeps its layout.
 * Failure      1, for numbers out of range, removed nodes or edges, and want
 *              of memory. A list whose elements have another size than its
 *              record is refused with the toolkit's "List size mismatch".
 * Stack        No function recurses: paths may be as long as memory allows.
 * Threads      A graph is used by one thread at a time; so is a walk's
 *              call-back, which runs on the thread that walks.
 */

#include "vx/types.h"
#include "vx/list.h"

VX_C_BEGIN

/* ---------------------------------------------------------------- records */

/** A graph. The lists are of the array layout; the record is the caller's. */
typedef struct VxGraph {
    VxList *nodes;   /* of VxGraphNode */
    VxList *edges;   /* of VxGraphEdge */
    VxList *regions; /* of VxGraphRegion */
    void *context;   /* the caller's, for the call-back of a walk */
} VxGraph;

typedef struct VxGraphNode {
    VxList *edges;      /* int32_t numbers of its edges, -1 for one removed; null in a removed node */
    intptr_t reserved;
    int32_t number;     /* -1 not reached, -2 on the path of a post-order walk, else what the walk gave */
    int32_t parentNode; /* from where a walk came, -1 at its start */
    int32_t parentEdge;
    int32_t low, low2;  /* the two lowest numbers to which cycles lead back, see VxGraphWalk */
    double val[2];      /* the caller's; -1.0 after VxGraphWalkInit */
    int32_t removed;    /* 1 for a removed node */
    void *user;         /* the caller's */
} VxGraphNode;

typedef struct VxGraphEdge {
    int32_t from, to;
    int32_t regionCount; /* regions that the edge borders, 0 to 2 */
    int32_t region[2];   /* their numbers, else -1 */
    double weight;       /* a walk does not follow an edge whose weight is negative */
    int32_t cycle;       /* 1 when a walk found that the edge closes a cycle */
    int32_t removed;     /* 1 for a removed edge */
} VxGraphEdge;

typedef struct VxGraphRegion {
    VxList *edges; /* int32_t numbers of the edges around the region */
    intptr_t spare;
} VxGraphRegion;

/* ---------------------------------------------------------------- making */

/**
 * Make a graph of n nodes without edges.
 *
 * @param n      0 or more
 * @param graph  filled; all null after a failure. VxGraphFree ends its life.
 */
VX_API uint32_t VxGraphMk(int32_t n, VxGraph *graph);

/**
 * Add an edge; its number is the count of edges before. Loops and several
 * edges between two nodes are allowed.
 *
 * @param from, to   nodes; one that is to list the edge must not be removed
 * @param directed   not 0: only `from` lists the edge, which is followed only
 *                   from there; 0: both list it, a loop stands in its list twice
 * @param edge       receives the address of the record; may be null
 * @return 0, or 1 with the graph as it was
 */
VX_API uint32_t VxGraphAddEdge(VxGraph *graph, int32_t from, int32_t to, int32_t directed,
                               VxGraphEdge **edge);

/** Remove an edge: the first entry of its number in the list of each end becomes -1. */
VX_API uint32_t VxGraphEdgeDel(VxGraph *graph, int32_t number);

/**
 * Remove a node, the edges in its list, and the list. Directed edges from
 * other nodes into it stay in their lists; walks pass them by.
 */
VX_API uint32_t VxGraphNodeDel(VxGraph *graph, int32_t number);

/** Free what a graph holds, the lists of its regions included, and clear its lists. */
VX_API uint32_t VxGraphFree(VxGraph *graph);

/* ---------------------------------------------------------------- walks */

/** What a call-back is told. */
enum {
    VX_GRAPH_REACHED = 0,  /* a node is reached, and numbered next; also before VX_GRAPH_CYCLE, depth first */
    VX_GRAPH_FINISHED = 1, /* depth first: all edges of a node are done; `from` and `edge` are its parents */
    VX_GRAPH_TARGET = 2,   /* the target is reached, and has its number */
    VX_GRAPH_CYCLE = 3     /* an edge closes a cycle, its flag is set */
};

/**
 * Told of each step of a walk. For the start node, `from` and `edge` are -1.
 *
 * @return 0 to go on; any other value ends the walk, which returns it
 */
typedef uint32_t (*VxGraphWalkFn)(VxGraph *graph, int32_t from, int32_t to, int32_t edge, int32_t event);

/**
 * Make a graph ready for a walk: nodes are not reached, have no parents and
 * lows (-1) and -1.0 as their doubles; edges get weight 0 and no cycle flag.
 * Weights that are to keep a walk from edges are set behind it.
 */
VX_API uint32_t VxGraphWalkInit(VxGraph *graph);

/**
 * Walk from a node over all that it leads to and that is not yet reached.
 *
 * Edges are taken in the order of a node's list, but for the one over which
 * the node was reached.
 *
 *   mode 0  depth first; a node is numbered when it is reached
 *   mode 1  depth first; a node is -2 when it is reached, and numbered when
 *           all behind it is finished
 *   mode 2  breadth first; a node is numbered when it is reached
 *
 * Depth first, an edge to a node reached before whose number is not above that
 * of the edge's start closes a cycle: events 0 and 3. In a directed graph this
 * takes in edges across to a branch with lower numbers. `low` and `low2` are
 * the two lowest of a node's own number and those that its edges, and in mode
 * 0 those of all behind it, lead back to (J. Hopcroft, R. Tarjan, "Dividing a
 * Graph into Triconnected Components", SIAM Journal on Computing 2, 1973).
 * Breadth first, every edge between reached nodes gives event 3, once.
 *
 * @param start    a node
 * @param target   a node whose reaching ends the walk, or -1; the start, too
 * @param fn       told of each step; may be null
 * @param counter  the next number, advanced with each; walks from several
 *                 starts go on counting
 * @param found    receives 1 when the target was reached, else 0; may be null
 * @return 0; 1 after a failure; 4 for a start that was removed; else what the
 *         call-back gave. What was reached so far keeps its numbers.
 */
VX_API uint32_t VxGraphWalk(VxGraph *graph, int32_t mode, int32_t start, int32_t target, VxGraphWalkFn fn,
                            int32_t *counter, int32_t *found);

/* ---------------------------------------------------------------- components */

/**
 * The strongly connected components of a directed graph: nodes of which each
 * leads to each other. A node in no cycle is a component of its own. Edges
 * lead from a component to itself or to later ones.
 *
 * By two walks, over the graph and over its transpose (S. R. Kosaraju's
 * method, published by M. Sharir, "A strong-connectivity algorithm and its
 * applications in data flow analysis", Computers & Mathematics with
 * Applications 7, 1981), in time proportional to nodes and edges. Weights do
 * not count. The records are left as VxGraphWalkInit and walks of mode 1 from
 * all nodes leave them.
 *
 * @param count       receives the number of components
 * @param components  receives an array of that many lists of int32_t node
 *                    numbers, null for none. The caller deletes each list with
 *                    VxListDel and frees the array with VxMemFree.
 * @return 0, or 1 with the graph as it was, and 0 and null in the results
 */
VX_API uint32_t VxGraphSCC(VxGraph *graph, int32_t *count, VxList ***components);

/* ---------------------------------------------------------------- regions
 *
 * A region is a closed loop of edges, as a face of a planar drawing. The
 * caller makes it: a VxGraphRegion with a list of edges is stored in
 * graph->regions, and its number in `region` of each of these edges.
 */

/**
 * Find the loop of a region anew after edges have changed.
 *
 * Of the regions at the edges of a node the one with the most edges is taken,
 * the first of equals. A walk of mode 0 that crosses no edge with exactly one
 * region starts at the `from` node of the last of these, or at the node given
 * when there are none; the first cycle that it closes is the new loop. When
 * the region was found over an edge with one region, and its loop is not
 * longer than the new one, it stays. Otherwise the new loop takes its place:
 * the region is removed from its old edges and added to the new ones.
 *
 * The walk begins with VxGraphWalkInit, so weights are lost.
 *
 * @return 0; 1 after a failure, when no cycle is closed, and when an edge of
 *         the new loop borders two other regions; 5 when no edge of the node
 *         borders a region. Regions are then as they were.
 */
VX_API uint32_t VxRgnFromNode(VxGraph *graph, int32_t node);

/**
 * The same for the regions along a path.
 *
 * @param path  list of int32_t edge numbers, one or more; without edges of one
 *              region, the walk starts at the `from` node of the first
 * @return as above; 5 when an edge of the path borders no region
 */
VX_API uint32_t VxRgnFromPath(VxGraph *graph, VxList *path);

VX_C_END

#endif
