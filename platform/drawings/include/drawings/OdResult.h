// Result codes and the exception that carries them.
#pragma once

#include <stdexcept>
#include <string>

enum OdResult : int {
  eOk = 0,
  eNotApplicable,
  eInvalidInput,
  eKeyNotFound,
  eDuplicateKey,
  eNullObjectId,
  eWasErased,
  eNotOpenForWrite,
  eInvalidOpenState,
  eCantOpenFile,
  eFileWriteError,
  eBadDxfFile,
  eInvalidSymbolTableName,
  eNotInDatabase,
  eAlreadyInDb,
  eWrongObjectType,
  eNotImplementedYet,
};

const char* odResultText(OdResult r);

class OdError : public std::runtime_error {
public:
  explicit OdError(OdResult code) : std::runtime_error(odResultText(code)), m_code(code) {}
  OdError(OdResult code, const std::string& what) : std::runtime_error(what), m_code(code) {}
  OdResult code() const { return m_code; }

private:
  OdResult m_code;
};
