// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace dao
{

/// Types of fields. The numbers are stored and never change. In memory a value is a QVariant, invalid for Null.
enum DataTypeEnum : int
{
    dbBoolean = 1, ///< bool
    dbByte = 2,    ///< int, 0 to 255
    dbInteger = 3, ///< int, 16-bit signed
    dbLong = 4,    ///< int, 32-bit signed
    dbSingle = 6,  ///< double, rounded to a 32-bit float
    dbDouble = 7,  ///< double
    dbDate = 8,    ///< double: days since 30 December 1899, the time as the fraction
    dbText = 10,   ///< QString of at most Size() characters (UTF-16 units)
    dbMemo = 12,   ///< QString of any length
};

enum FieldAttributeEnum : int
{
    dbAutoIncrField = 16, ///< Automatic counter.
};

enum RecordsetTypeEnum : int
{
    dbOpenDefault = 0, ///< Table for a table's name, dynaset for a query.
    dbOpenTable = 1,
    dbOpenDynaset = 2,  ///< Rows are fixed at opening, values are read anew, rows can be edited.
    dbOpenSnapshot = 4, ///< Rows and values as they were at opening; read only.
};

enum WorkspaceTypeEnum : int
{
    dbUseODBC = 1,
    dbUseJet = 2
};

enum CommitTransOptionsEnum : int
{
    dbCommitDefault = 0,
    dbForceOSFlush = 1, ///< Returns when all that was committed is on the disk.
};

enum DriverPromptEnum : int
{
    dbDriverNoPrompt = 1
};

} // namespace dao
