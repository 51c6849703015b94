/* The annotations of a compiler with static analysis, recorded in the declarations: an annotation that
 * this header lacks, or that is in the wrong place, does not compile. */
#ifndef TESTS_COMPONENT_PUBLICHEADERS_ANALYSER_SAL_H
#define TESTS_COMPONENT_PUBLICHEADERS_ANALYSER_SAL_H

#define _Check_return_ __attribute__((warn_unused_result))
#define _Success_(condition)
#define _Ret_maybenull_
#define _Out_
#define _Inout_
#define _Inout_opt_
#define _In_z_
#define _In_reads_bytes_opt_(size)
#define _Out_writes_opt_z_(size)

#endif
