"""Every exported name stands in the C++ headers, in code or in a docstring, or belongs to one of the families below
that C++ does not need a form of its own for."""
import re
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))
import where

# Families that are called as they are, and why.
WITHOUT_FORM = {
    r"_vxm\w+_(21|50)": "other names of the functions with _HA",
    r"_vxm\w+_SC\w*": "single elements, for layers with kernels of their own",
    r"_vxm\w*_scalar|_vxm_internal_\w+|_vxmreduce_pio2d": "functions of one number",
    r"_vxm[ds]Error|_vxmSetInterfInputVectorPointer|qkr_vxm_service_\w+": "for layers that report elements themselves",
    r"dll_cpu_version": "always 0",
    r"__vxs[sdi]?BRng\w+": "the generators' own entries: uniform() and bits() of a stream",
    r"__vxsi(PowMod|Matr3x3|Vect3)\w*|__vxs[sd](Ln|Floor|Sqrt)|__vxsAllocateStream": "for generators of one's own",
    r"__vxs(Create|Delete)String|__vxs(FillIn|Write|Read|Validate|Open|Close)\w*(Header|File|Chunks)\w*"
    r"|__vxsCreateStream|__vxsDeallocateStream|__vxsReadStreamStateFromFile": "steps of save() and try_load()",
    r"(w6_)?zprsFFT\w+": "transforms of powers of two, which fft takes by itself, and their plans in two sets",
    r"(w6_)?zprs(Copy|Zero|Set)_\w+": "std::copy and std::fill",
    r"(w6_)?zprsMalloc_\w+|zprsFree": "types of elements of aligned_array",
    r"w6_zprs_BitRev\w+": "a step of the transforms",
    r"_vxs(Conv|Corr)(DD|SD|SS)(Direct|Fft)(1D|All)_(no)?dec": "what tasks execute",
    r"qkr_serv_\w+|QKR_read_env|QKR_ThreadID|i_(malloc|calloc|realloc|free)|mm_FIRST": "the service layer",
    r"qkr_blas_def_\w+": "strided vectors by address, for the transforms",
    r"qkr_dft_def_error_class_external": "the comparison of two numbers",
}

include = where.REPOSITORY / "include" / "qkr"
headers = [include / "qkr.hpp", *sorted((include / "cpp").glob("*.hpp"))]
named = set(re.findall(r"\w+", "".join(header.read_text() for header in headers)))
absent = set(where.declarations(sys.argv[1])) - named
matches = {family: {name for name in absent if re.fullmatch(family, name)} for family in WITHOUT_FORM}
faults = [f"stands in no C++ header: {name}" for name in sorted(absent - set().union(*matches.values()))]
faults += [f"no name without a form is of the family {family}" for family, found in matches.items() if not found]
print(f"{len(absent)} names of {len(matches)} families without a form in {len(headers)} headers")
sys.exit("\n".join(faults) or (0 if len(headers) > 5 and absent else "no headers found"))
