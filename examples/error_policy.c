/* What happens to elements for which a function has no answer. Results are those of IEEE arithmetic, errors
 * are told in the thread's status word, and the thread chooses what else an error does: here a callback that
 * repairs the element, then a message on stderr.
 *
 * error_policy OUT_DIR
 * Writes OUT_DIR/error_policy.csv. */
#include <errno.h>
#include <float.h>
#include <math.h>
#include <qkr/qkr.h>
#include <stdio.h>
#include <string.h>

enum { COUNT = 5 };
static const double a[COUNT] = {2.0, 0.0, -3.0, INFINITY, NAN};

static void logarithm(int32_t n, const double *x, double *r) { _vxmdLn_HA(n, x, r); }

static void reciprocal(int32_t n, const double *x, double *r) {
  static const double one[COUNT] = {1.0, 1.0, 1.0, 1.0, 1.0};
  _vxmdDiv_HA(n, one, x, r);
}

static const struct {
  const char *name;
  void (*apply)(int32_t n, const double *x, double *r);
} functions[] = {{"ln(a)", logarithm}, {"1/a", reciprocal}};
enum { FUNCTIONS = sizeof functions / sizeof functions[0] };

static const char *status_name(int32_t status) {
  switch (status) {
    case VXM_STATUS_OK:
      return "no error";
    case VXM_STATUS_ERRDOM:
      return "out of domain";
    case VXM_STATUS_SING:
      return "singularity";
    default:
      return "another error";
  }
}

static void print_row(const char *title, const double *values) {
  printf("  %-10s", title);
  for (int i = 0; i < COUNT; ++i) printf("%14g", isnan(values[i]) ? fabs(values[i]) : values[i]);
  printf("\n");
}

/* Called once for each bad element. Makes the infinity at a singularity the largest finite number of its
 * sign, and leaves other results as they are. Returning 0 has dbR1 written back to the result vector. */
static int32_t repair(VxmErrorContext *element) {
  printf("  callback: %.*s, element %d, status %d (%s)", element->iFuncNameLen, element->cFuncName,
         element->iIndex, element->iCode, status_name(element->iCode));
  if (element->iCode == VXM_STATUS_SING) {
    element->dbR1 = copysign(DBL_MAX, element->dbR1);
    printf(", repaired");
  }
  printf("\n");
  return 0;
}

int main(int argc, char **argv) {
  if (argc != 2) return fprintf(stderr, "usage: error_policy OUT_DIR\n"), 1;
  char path[4096];
  if (snprintf(path, sizeof path, "%s/error_policy.csv", argv[1]) >= (int)sizeof path)
    return fprintf(stderr, "error_policy: the name of the directory is too long\n"), 1;
  double result[FUNCTIONS][COUNT], repaired[FUNCTIONS][COUNT];
  int32_t status[FUNCTIONS][COUNT];

  printf("The default policy: IEEE results, and the status word tells the latest error.\n");
  print_row("a", a);
  for (int f = 0; f < FUNCTIONS; ++f) {
    _vxmClearErrStatus();
    errno = 0;
    functions[f].apply(COUNT, a, result[f]);
    const int error = errno;
    print_row(functions[f].name, result[f]);
    printf("  status %d (%s), errno \"%s\"\n", _vxmGetErrStatus(), status_name(_vxmGetErrStatus()),
           strerror(error));
  }

  printf("Element by element, each call has a status of its own.\n");
  for (int f = 0; f < FUNCTIONS; ++f) {
    printf("  %-10s", functions[f].name);
    for (int i = 0; i < COUNT; ++i) {
      _vxmClearErrStatus();
      functions[f].apply(1, &a[i], &result[f][i]);
      status[f][i] = _vxmGetErrStatus();
      printf("%14d", status[f][i]);
    }
    printf("\n");
  }

  printf("A callback that repairs singularities.\n");
  _vxmSetErrorCallBack(repair);
  for (int f = 0; f < FUNCTIONS; ++f) {
    functions[f].apply(COUNT, a, repaired[f]);
    print_row(functions[f].name, repaired[f]);
  }
  _vxmClearErrorCallBack();

  printf("The messages of the stderr handler.\n");
  fflush(stdout);
  const VxmMode before = _vxmSetMode(VXM_MODE_STDERR);
  double scratch[COUNT];
  for (int f = 0; f < FUNCTIONS; ++f) functions[f].apply(COUNT, a, scratch);
  _vxmSetMode(before);

  FILE *file = fopen(path, "w");
  if (!file) return fprintf(stderr, "error_policy: cannot write %s: %s\n", path, strerror(errno)), 1;
  fprintf(file, "function,a,status,result,repaired\n");
  for (int f = 0; f < FUNCTIONS; ++f)
    for (int i = 0; i < COUNT; ++i)
      fprintf(file, "%s,%.17g,%d,%.17g,%.17g\n", functions[f].name, a[i], status[f][i], result[f][i],
              repaired[f][i]);
  const int bad = ferror(file);
  if (fclose(file) != 0 || bad) return fprintf(stderr, "error_policy: cannot write %s\n", path), 1;
  return 0;
}
