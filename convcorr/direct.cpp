// The direct method in one dimension.
#include "convcorr/operands.h"

namespace qkr::convcorr {

template <class Form>
int32_t direct_line(const Problem &problem, const Operands<Form> &given) {
  DirectOperands<Form> operands(problem, given);
  if (!operands.make(problem, given)) return VXS_CC_ERROR_ALLOC;
  const TapRow<typename Form::Real> row = {operands.taps(), operands.signal()};
  take_sums(&row, 1, operands.line[0], operands.result());
  operands.give_back();
  return VXS_CC_OK;
}

template int32_t direct_line<DD>(const Problem &, const Operands<DD> &);
template int32_t direct_line<SD>(const Problem &, const Operands<SD> &);
template int32_t direct_line<SS>(const Problem &, const Operands<SS> &);

}  // namespace qkr::convcorr
