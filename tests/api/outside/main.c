/* Starts the toolkit from plain C, evaluates a formula, stops it again. */

#include <math.h>
#include <stdio.h>

#include "vx/eval.h"
#include "vx/mem.h"
#include "vx/tools.h"
#include "vx/xdr.h"

/* A number through a stream and back, with the library that the toolkit brings. */
static int xdrWorks(void)
{
    char bytes[8];
    double in = 2.5, out = 0;
    XDR stream;
    xdrmem_create(&stream, bytes, sizeof bytes, XDR_ENCODE);
    bool_t written = xdr_double(&stream, &in);
    xdrmem_create(&stream, bytes, sizeof bytes, XDR_DECODE);
    return written && xdr_double(&stream, &out) && out == in;
}

int main(void)
{
    double centimetres = 0;
    int32_t constant = 0;
    if (VxToolsInit(NULL, NULL) != 0 || VxMemInit() != 0) {
        puts("the toolkit did not start");
        return 1;
    }
    if (VxCharExprEval("1.in + 1.cm", "cm", &constant, &centimetres) != 0)
        return 1;
    printf("%s\n1.in + 1.cm = %g cm\n", GetVerNum(), centimetres);
    VxMemExit();
    VxToolsExit();
    return fabs(centimetres - 3.54) > 1e-12 || !xdrWorks();
}
