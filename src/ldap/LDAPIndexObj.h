// LDAPIndexObj.h: LDAPIndexObj, the sort key of one row of a table.
#pragma once

#include "common/UStringX.h"
#include "kernel/OSBTree.h"

class LDAPRow;

class LDAPIndexObj : public OSBTreeObj {
  public:
    enum Order { kText, kNumber, kDateTime };

    // Reads the row's field `name`; a missing one is empty. Borrows the row.
    LDAPIndexObj(LDAPRow& row, const char* name, Order order, bool descending);

    int Compare(const OSBTreeObj& other) const override;

    LDAPRow* r;
    UString value;
    long long nvalue = 0;  // 0 when the value is no number
    Order numericalOrder;
    bool descendingOrder;
    // Of a value like "14:05 3/11/2023"; what is missing is 0.
    long long hour = 0;
    long long minute = 0;
    long long day = 0;
    long long month = 0;
    long long year = 0;

  private:
    void ReadDateTime();
    int CompareAscending(const LDAPIndexObj& other) const;
};
