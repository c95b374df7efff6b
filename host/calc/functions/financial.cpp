// Payments and interest. A rate is the interest of one period.
#include "host/calc/evaluator.h"
#include "host/calc/functions/groups.h"

#include <algorithm>

namespace host {

namespace {

Number argument(Arguments in, size_t place) {
    if (!in[place].isValid()) {
        throw NumberError("the argument could not be computed");
    }
    return in[place].asNumber().value_or(0);
}

// Returns (1 + rate) ^ periods, with more places than the result will have.
Number growth(const Number& rate, const Number& periods, int places) {
    constexpr int kReserve = 40;
    return Number::power(rate + 1, periods, std::min(places + kReserve, Number::kMaxDigits));
}

Value futureValue(Session& session, Arguments in) {
    const Number payment = argument(in, 0);
    const Number rate = argument(in, 1);
    const Number periods = argument(in, 2);
    if (rate.isZero()) {
        return Value::number(payment * periods);
    }
    const int places = session.precision();
    return Value::number(Number::divide(payment * (growth(rate, periods, places) - 1), rate, places));
}

Value paymentOf(Session& session, Arguments in) {
    const Number principal = argument(in, 0);
    const Number rate = argument(in, 1);
    const Number term = argument(in, 2);
    const int places = session.precision();
    if (rate.isZero()) {
        return Value::number(Number::divide(principal, term, places));
    }
    return Value::number(Number::divide(principal * rate, Number(1) - growth(rate, -term, places), places));
}

Value presentValue(Session& session, Arguments in) {
    const Number payment = argument(in, 0);
    const Number rate = argument(in, 1);
    const Number periods = argument(in, 2);
    if (rate.isZero()) {
        return Value::number(payment * periods);
    }
    const int places = session.precision();
    return Value::number(
        Number::divide(payment * (Number(1) - growth(rate, -periods, places)), rate, places));
}

// The payments, one a period, are the repetitions of a variable.
Value netPresentValue(Evaluator& evaluator, Nodes in) {
    Session& session = evaluator.session();
    const Number factor = evaluator.evaluate(in[1]).asNumber().value_or(0) + 1;
    Number divisor = 1;
    Number sum;
    for (const Value& payment : session.repetitions(std::get<Variable>(in[0].form).key)) {
        divisor = divisor * factor;
        sum = sum + Number::divide(payment.asNumber().value_or(0), divisor, session.precision());
    }
    return Value::number(sum);
}

constexpr Builtin kFunctions[] = {
    {u"FV ( payment ; interestRate ; periods )", futureValue, "Returns what equal payments will be worth."},
    {u"NPV ( payment ; interestRate )", Refused{CalcCode::fieldRequired}, netPresentValue,
     "Returns what the payments in a field's or a variable's repetitions are worth now."},
    {u"PMT ( principal ; interestRate ; term )", paymentOf, "Returns the payment that pays back a loan."},
    {u"PV ( payment ; interestRate ; periods )", presentValue, "Returns what equal payments are worth now."},
};

} // namespace

std::span<const Builtin> financialFunctions() {
    return kFunctions;
}

} // namespace host
