#include "hpeva_privatedata.h"

template class qorin_pdk_4_4::CFiPrivateDataConcreteFactory<CHpEvaPrivateData>;

CHpEvaPrivateData::CHpEvaPrivateData(qorin_objid *id, bool isAltNode) : CFiPrivateData(id, isAltNode) {}

CHpEvaPrivateData::~CHpEvaPrivateData() = default;
