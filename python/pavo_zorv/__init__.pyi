# Written by write_stubs from the public header.
from collections.abc import Iterable, Mapping
from typing import Any, ClassVar, Final, Literal, TypeVar, Union

from ._layout import Field as Field
from ._streams import Splitter as Splitter, StreamError as StreamError, framed as framed

_M = TypeVar("_M", bound="Message")
_Bytes = Union[bytes, bytearray, memoryview]

__version__: Final[str]
CLASSES: Final[dict[str, type[Message]]]

class DecodeError(ValueError):
    partial: Message
    result: int
    name: str
    offset: int | None
    path: str
    reason: str

class Message:
    fields: ClassVar[Mapping[str, Field]]
    __hash__: ClassVar[None]  # type: ignore[assignment]
    @classmethod
    def from_bytes(cls: type[_M], data: _Bytes, *, reference: bool = ..., limit: int | None = ...) -> _M: ...
    def to_bytes(self) -> bytes: ...
    @classmethod
    def from_json(cls: type[_M], text: str | bytes) -> _M: ...
    def to_json(self) -> str: ...
    def to_dict(self) -> dict[str, Any]: ...
    def has(self, name: str) -> bool: ...
    def copy(self: _M) -> _M: ...
    def compare(self: _M, other: _M) -> int: ...
    def __eq__(self, other: object) -> bool: ...
    def __lt__(self: _M, other: _M) -> bool: ...
    def __le__(self: _M, other: _M) -> bool: ...
    def __gt__(self: _M, other: _M) -> bool: ...
    def __ge__(self: _M, other: _M) -> bool: ...

class api_addr(Message):
    address: int | None
    def __init__(
        self,
        *,
        address: int | None = ...,
    ) -> None: ...

class api_lbl_stack(Message):
    labels: list[int]
    def __init__(
        self,
        *,
        labels: Iterable[int] | None = ...,
    ) -> None: ...

class prefix_sid_type(Message):
    field1: int | None
    field2: list[int]
    def __init__(
        self,
        *,
        field1: int | None = ...,
        field2: Iterable[int] | None = ...,
    ) -> None: ...

class policy_binding_sid_t(Message):
    sid: _prefix_sid_type
    field2: int | None
    def __init__(
        self,
        *,
        sid: _prefix_sid_type | Mapping[str, Any] | None = ...,
        field2: int | None = ...,
    ) -> None: ...

class api_exp_hop(Message):
    field1: int | None
    field2: int | None
    field3: int | None
    field4: int | None
    field5: list[int]
    field6: list[int]
    def __init__(
        self,
        *,
        field1: int | None = ...,
        field2: int | None = ...,
        field3: int | None = ...,
        field4: int | None = ...,
        field5: Iterable[int] | None = ...,
        field6: Iterable[int] | None = ...,
    ) -> None: ...

class api_exp_path(Message):
    hops: list[_api_exp_hop]
    field2: int | None
    def __init__(
        self,
        *,
        hops: Iterable[_api_exp_hop | Mapping[str, Any]] | None = ...,
        field2: int | None = ...,
    ) -> None: ...

class api_msg_service(Message):
    field1: bool | None
    field2: bool | None
    field3: bool | None
    def __init__(
        self,
        *,
        field1: bool | None = ...,
        field2: bool | None = ...,
        field3: bool | None = ...,
    ) -> None: ...

class api_msg_internal(Message):
    field1: bool | None
    field2: str | None
    field3: int | None
    field4: int | None
    service: _api_msg_service
    field6: int | None
    field7: bool | None
    def __init__(
        self,
        *,
        field1: bool | None = ...,
        field2: str | None = ...,
        field3: int | None = ...,
        field4: int | None = ...,
        service: _api_msg_service | Mapping[str, Any] | None = ...,
        field6: int | None = ...,
        field7: bool | None = ...,
    ) -> None: ...

class api_msg_on_demand_color_notif(Message):
    color: int | None
    def __init__(
        self,
        *,
        color: int | None = ...,
    ) -> None: ...

class api_msg_p2p_auto_policy(Message):
    field1: str | None
    field2: str | None
    field3: int | None
    field4: int | None
    field5: bool | None
    field6: bool | None
    label_stack: _api_lbl_stack
    field8: int | None
    field9: int | None
    field10: bool | None
    field11: list[int]
    field12: int | None
    field13: int | None
    exp_paths: list[_api_exp_path]
    field15: int | None
    field16: int | None
    field17: int | None
    field18: int | None
    field19: bool | None
    field20: str | None
    prefix_sid: _prefix_sid_type
    field22: int | None
    def __init__(
        self,
        *,
        field1: str | None = ...,
        field2: str | None = ...,
        field3: int | None = ...,
        field4: int | None = ...,
        field5: bool | None = ...,
        field6: bool | None = ...,
        label_stack: _api_lbl_stack | Mapping[str, Any] | None = ...,
        field8: int | None = ...,
        field9: int | None = ...,
        field10: bool | None = ...,
        field11: Iterable[int] | None = ...,
        field12: int | None = ...,
        field13: int | None = ...,
        exp_paths: Iterable[_api_exp_path | Mapping[str, Any]] | None = ...,
        field15: int | None = ...,
        field16: int | None = ...,
        field17: int | None = ...,
        field18: int | None = ...,
        field19: bool | None = ...,
        field20: str | None = ...,
        prefix_sid: _prefix_sid_type | Mapping[str, Any] | None = ...,
        field22: int | None = ...,
    ) -> None: ...

class api_msg_p2p_auto_policy_notif(Message):
    field1: str | None
    field2: str | None
    field3: int | None
    field4: bool | None
    field5: bool | None
    field6: bool | None
    field7: int | None
    field8: int | None
    field9: bool | None
    label_stack: _api_lbl_stack
    field11: int | None
    field12: int | None
    field13: bool | None
    field14: int | None
    field15: list[int]
    field16: int | None
    field17: int | None
    field18: int | None
    field19: int | None
    field20: bool | None
    field21: str | None
    field22: list[int]
    field23: int | None
    field24: int | None
    field25: int | None
    field26: bool | None
    field27: int | None
    def __init__(
        self,
        *,
        field1: str | None = ...,
        field2: str | None = ...,
        field3: int | None = ...,
        field4: bool | None = ...,
        field5: bool | None = ...,
        field6: bool | None = ...,
        field7: int | None = ...,
        field8: int | None = ...,
        field9: bool | None = ...,
        label_stack: _api_lbl_stack | Mapping[str, Any] | None = ...,
        field11: int | None = ...,
        field12: int | None = ...,
        field13: bool | None = ...,
        field14: int | None = ...,
        field15: Iterable[int] | None = ...,
        field16: int | None = ...,
        field17: int | None = ...,
        field18: int | None = ...,
        field19: int | None = ...,
        field20: bool | None = ...,
        field21: str | None = ...,
        field22: Iterable[int] | None = ...,
        field23: int | None = ...,
        field24: int | None = ...,
        field25: int | None = ...,
        field26: bool | None = ...,
        field27: int | None = ...,
    ) -> None: ...

class api_msg_p2p_auto_policy_request(Message):
    policy: _api_msg_p2p_auto_policy
    field2: int | None
    field3: int | None
    def __init__(
        self,
        *,
        policy: _api_msg_p2p_auto_policy | Mapping[str, Any] | None = ...,
        field2: int | None = ...,
        field3: int | None = ...,
    ) -> None: ...

class api_msg_p2p_auto_policy_response(Message):
    notification: _api_msg_p2p_auto_policy_notif
    field2: int | None
    field3: int | None
    def __init__(
        self,
        *,
        notification: _api_msg_p2p_auto_policy_notif | Mapping[str, Any] | None = ...,
        field2: int | None = ...,
        field3: int | None = ...,
    ) -> None: ...

class api_msg_p2p_auto_policy_sweep(Message):
    field1: int | None
    field2: int | None
    def __init__(
        self,
        *,
        field1: int | None = ...,
        field2: int | None = ...,
    ) -> None: ...

class api_nodeid(Message):
    field1: int | None
    octets: list[int]
    def __init__(
        self,
        *,
        field1: int | None = ...,
        octets: Iterable[int] | None = ...,
    ) -> None: ...

class api_prefix(Message):
    octets: list[int]
    field2: int | None
    def __init__(
        self,
        *,
        octets: Iterable[int] | None = ...,
        field2: int | None = ...,
    ) -> None: ...

class api_intf(Message):
    field1: int | None
    field2: str | None
    def __init__(
        self,
        *,
        field1: int | None = ...,
        field2: str | None = ...,
    ) -> None: ...

class api_link_update(Message):
    field1: int | None
    field2: str | None
    field3: int | None
    field4: int | None
    field5: list[int]
    def __init__(
        self,
        *,
        field1: int | None = ...,
        field2: str | None = ...,
        field3: int | None = ...,
        field4: int | None = ...,
        field5: Iterable[int] | None = ...,
    ) -> None: ...

class api_policy(Message):
    field1: str | None
    field2: int | None
    field3: int | None
    field4: bool | None
    prefixes: list[_api_prefix]
    field6: str | None
    field7: str | None
    field8: int | None
    field9: int | None
    field10: bool | None
    def __init__(
        self,
        *,
        field1: str | None = ...,
        field2: int | None = ...,
        field3: int | None = ...,
        field4: bool | None = ...,
        prefixes: Iterable[_api_prefix | Mapping[str, Any]] | None = ...,
        field6: str | None = ...,
        field7: str | None = ...,
        field8: int | None = ...,
        field9: int | None = ...,
        field10: bool | None = ...,
    ) -> None: ...

class api_aa_list(Message):
    octets: list[int]
    field2: int | None
    policies: list[_api_policy]
    def __init__(
        self,
        *,
        octets: Iterable[int] | None = ...,
        field2: int | None = ...,
        policies: Iterable[_api_policy | Mapping[str, Any]] | None = ...,
    ) -> None: ...

class api_to_zorv(Message):
    nodeid: _api_nodeid
    intf: _api_intf
    field3: bool | None
    def __init__(
        self,
        *,
        nodeid: _api_nodeid | Mapping[str, Any] | None = ...,
        intf: _api_intf | Mapping[str, Any] | None = ...,
        field3: bool | None = ...,
    ) -> None: ...

class api_to_igp(Message):
    link_update: _api_link_update
    aa_list: _api_aa_list
    field3: bool | None
    field4: bool | None
    def __init__(
        self,
        *,
        link_update: _api_link_update | Mapping[str, Any] | None = ...,
        aa_list: _api_aa_list | Mapping[str, Any] | None = ...,
        field3: bool | None = ...,
        field4: bool | None = ...,
    ) -> None: ...

class api_msg_policy_reg(Message):
    field1: bool | None
    octets: list[int]
    field3: int | None
    field4: str | None
    def __init__(
        self,
        *,
        field1: bool | None = ...,
        octets: Iterable[int] | None = ...,
        field3: int | None = ...,
        field4: str | None = ...,
    ) -> None: ...

class srv6_prefix(Message):
    field1: Union[bytes, memoryview] | None
    field2: int | None
    def __init__(
        self,
        *,
        field1: _Bytes | None = ...,
        field2: int | None = ...,
    ) -> None: ...

class srv6_sid_struct(Message):
    field1: bool | None
    field2: bool | None
    field3: int | None
    field4: int | None
    field5: int | None
    field6: int | None
    field7: int | None
    field8: int | None
    def __init__(
        self,
        *,
        field1: bool | None = ...,
        field2: bool | None = ...,
        field3: int | None = ...,
        field4: int | None = ...,
        field5: int | None = ...,
        field6: int | None = ...,
        field7: int | None = ...,
        field8: int | None = ...,
    ) -> None: ...

class srv6_usid(Message):
    field1: int | None
    field2: int | None
    prefix: _srv6_prefix
    sid_struct: _srv6_sid_struct
    def __init__(
        self,
        *,
        field1: int | None = ...,
        field2: int | None = ...,
        prefix: _srv6_prefix | Mapping[str, Any] | None = ...,
        sid_struct: _srv6_sid_struct | Mapping[str, Any] | None = ...,
    ) -> None: ...

class out_sid_list_info(Message):
    prefix_sid: _prefix_sid_type
    field2: int | None
    field3: int | None
    field4: Union[bytes, memoryview] | None
    def __init__(
        self,
        *,
        prefix_sid: _prefix_sid_type | Mapping[str, Any] | None = ...,
        field2: int | None = ...,
        field3: int | None = ...,
        field4: _Bytes | None = ...,
    ) -> None: ...

class out_srv6_usid_list_info(Message):
    usids: list[_srv6_usid]
    def __init__(
        self,
        *,
        usids: Iterable[_srv6_usid | Mapping[str, Any]] | None = ...,
    ) -> None: ...

class oam_req(Message):
    field1: int | None
    field2: int | None
    field3: str | None
    prefix_sid: _prefix_sid_type
    field5: int | None
    field6: Union[bytes, memoryview] | None
    field7: int | None
    field8: int | None
    def __init__(
        self,
        *,
        field1: int | None = ...,
        field2: int | None = ...,
        field3: str | None = ...,
        prefix_sid: _prefix_sid_type | Mapping[str, Any] | None = ...,
        field5: int | None = ...,
        field6: _Bytes | None = ...,
        field7: int | None = ...,
        field8: int | None = ...,
    ) -> None: ...

class oam_res(Message):
    field1: int | None
    field2: int | None
    field3: int | None
    field4: bool | None
    sid_lists: list[_out_sid_list_info]
    field6: Union[bytes, memoryview] | None
    usid_lists: list[_out_srv6_usid_list_info]
    def __init__(
        self,
        *,
        field1: int | None = ...,
        field2: int | None = ...,
        field3: int | None = ...,
        field4: bool | None = ...,
        sid_lists: Iterable[_out_sid_list_info | Mapping[str, Any]] | None = ...,
        field6: _Bytes | None = ...,
        usid_lists: Iterable[_out_srv6_usid_list_info | Mapping[str, Any]] | None = ...,
    ) -> None: ...

class api_msg(Message):
    field1: int | None
    internal: _api_msg_internal
    field3: _api_msg_p2p_auto_policy
    field4: _api_msg_p2p_auto_policy
    p2p_auto_policy_notif: _api_msg_p2p_auto_policy_notif
    field6: _api_msg_on_demand_color_notif
    field7: _api_msg_on_demand_color_notif
    p2p_auto_policy_request: _api_msg_p2p_auto_policy_request
    p2p_auto_policy_response: _api_msg_p2p_auto_policy_response
    p2p_auto_policy_sweep: _api_msg_p2p_auto_policy_sweep
    to_igp: _api_to_igp
    to_zorv: _api_to_zorv
    oam_req: _oam_req
    oam_res: _oam_res
    field15: bool | None
    policy_reg: _api_msg_policy_reg
    def __init__(
        self,
        *,
        field1: int | None = ...,
        internal: _api_msg_internal | Mapping[str, Any] | None = ...,
        field3: _api_msg_p2p_auto_policy | Mapping[str, Any] | None = ...,
        field4: _api_msg_p2p_auto_policy | Mapping[str, Any] | None = ...,
        p2p_auto_policy_notif: _api_msg_p2p_auto_policy_notif | Mapping[str, Any] | None = ...,
        field6: _api_msg_on_demand_color_notif | Mapping[str, Any] | None = ...,
        field7: _api_msg_on_demand_color_notif | Mapping[str, Any] | None = ...,
        p2p_auto_policy_request: _api_msg_p2p_auto_policy_request | Mapping[str, Any] | None = ...,
        p2p_auto_policy_response: _api_msg_p2p_auto_policy_response | Mapping[str, Any] | None = ...,
        p2p_auto_policy_sweep: _api_msg_p2p_auto_policy_sweep | Mapping[str, Any] | None = ...,
        to_igp: _api_to_igp | Mapping[str, Any] | None = ...,
        to_zorv: _api_to_zorv | Mapping[str, Any] | None = ...,
        oam_req: _oam_req | Mapping[str, Any] | None = ...,
        oam_res: _oam_res | Mapping[str, Any] | None = ...,
        field15: bool | None = ...,
        policy_reg: _api_msg_policy_reg | Mapping[str, Any] | None = ...,
    ) -> None: ...

_api_addr = api_addr
_api_lbl_stack = api_lbl_stack
_prefix_sid_type = prefix_sid_type
_policy_binding_sid_t = policy_binding_sid_t
_api_exp_hop = api_exp_hop
_api_exp_path = api_exp_path
_api_msg_service = api_msg_service
_api_msg_internal = api_msg_internal
_api_msg_on_demand_color_notif = api_msg_on_demand_color_notif
_api_msg_p2p_auto_policy = api_msg_p2p_auto_policy
_api_msg_p2p_auto_policy_notif = api_msg_p2p_auto_policy_notif
_api_msg_p2p_auto_policy_request = api_msg_p2p_auto_policy_request
_api_msg_p2p_auto_policy_response = api_msg_p2p_auto_policy_response
_api_msg_p2p_auto_policy_sweep = api_msg_p2p_auto_policy_sweep
_api_nodeid = api_nodeid
_api_prefix = api_prefix
_api_intf = api_intf
_api_link_update = api_link_update
_api_policy = api_policy
_api_aa_list = api_aa_list
_api_to_zorv = api_to_zorv
_api_to_igp = api_to_igp
_api_msg_policy_reg = api_msg_policy_reg
_srv6_prefix = srv6_prefix
_srv6_sid_struct = srv6_sid_struct
_srv6_usid = srv6_usid
_out_sid_list_info = out_sid_list_info
_out_srv6_usid_list_info = out_srv6_usid_list_info
_oam_req = oam_req
_oam_res = oam_res
_api_msg = api_msg
