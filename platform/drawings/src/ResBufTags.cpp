#include "ResBufTags.h"


static bool isPointX(int code) {
  return (code >= 10 && code <= 18) || (code >= 110 && code <= 112) || (code >= 1010 && code <= 1013);
}

OdResBufPtr resBufChain(const DxfCodec& codec, const DxfTagList& t, size_t begin, size_t end) {
  OdResBufPtr head, tail;
  for (size_t i = begin; i < end; ++i) {
    const DxfTag& tag = t[i];
    OdResBufPtr rb = OdResBuf::newRb(tag.code);
    switch (dxfTypeOf(tag.code)) {
      case DxfType::Double:
        if (isPointX(tag.code) && i + 1 < end && t[i + 1].code == tag.code + 10) {
          OdGePoint3d p{tag.toDouble(), t[++i].toDouble(), 0};
          if (i + 1 < end && t[i + 1].code == tag.code + 20) p.z = t[++i].toDouble();
          rb->setPoint3d(p);
        } else {
          rb->setDouble(tag.toDouble());
        }
        break;
      case DxfType::Int16:
      case DxfType::Int32:
      case DxfType::Int64:
      case DxfType::Bool: rb->setInt64(tag.toInt()); break;
      case DxfType::Handle:
        rb->setHandle(OdDbHandle(tag.toHandle()));
        rb->setString(OdString::fromUtf8(tag.text));
        break;
      case DxfType::Binary: rb->setBinaryChunk(tag.text); break;
      default: rb->setString(codec.decode(tag.text));
    }
    if (tail) tail = tail->setNext(rb);
    else head = tail = rb;
  }
  return head;
}

DxfTagList tagsOfChain(const DxfCodec& codec, const OdResBuf* rb) {
  DxfTagList out;
  for (; rb; rb = rb->next().get()) {
    int code = rb->restype();
    switch (dxfTypeOf(code)) {
      case DxfType::Double:
        if (isPointX(code)) {
          const auto& p = rb->getPoint3d();
          out.emplace_back(code, dxfFormatDouble(p.x));
          out.emplace_back(code + 10, dxfFormatDouble(p.y));
          out.emplace_back(code + 20, dxfFormatDouble(p.z));
        } else {
          out.emplace_back(code, dxfFormatDouble(rb->getDouble()));
        }
        break;
      case DxfType::Int16:
      case DxfType::Int32:
      case DxfType::Int64:
      case DxfType::Bool: out.emplace_back(code, std::to_string(rb->getInt64())); break;
      case DxfType::Handle:
        out.emplace_back(code, rb->getHandle().isNull() && !rb->getString().isEmpty() ? rb->getString().toUtf8()
                                                                                     : dxfFormatHandle(rb->getHandle().value()));
        break;
      case DxfType::Binary: out.emplace_back(code, rb->getBinaryChunk()); break;
      default: out.emplace_back(code, codec.encode(rb->getString().view()));
    }
  }
  return out;
}
